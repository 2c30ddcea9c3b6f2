#include "common/action/ActionPerformerBase.h"

#include "common/action/ActionCodes.h"
#include "support/FakeHost.h"
#include "support/Test.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Tests;
using namespace std::chrono_literals;

class Performer : public ActionPerformerBase {
 public:
  explicit Performer(std::weak_ptr<ModuleDependencies> dependencies)
      : ActionPerformerBase(
            PRODUCT_KOB, [](unsigned int, const ActionParameters&) { return ModuleAction(); },
            std::move(dependencies)) {}
  using ActionPerformerBase::RiseNewFileOnOutbox;
  using ActionPerformerBase::RunOneShotAction;
  using ActionPerformerBase::SendStatusForProgrammedTask;
};

class ActionPerformerBaseTest : public Test {
 protected:
  FakeHost host_;
  Performer performer_{host_.Dependencies()};
  ActionParameters parameters_;
};

TEST_F(ActionPerformerBaseTest, ReportsATaskFromParametersOfEitherTextType) {
  parameters_.Set(COMMON_PARAMETER_TASK_NAME, wxString::FromUTF8("Ü"));
  parameters_.Set(COMMON_PARAMETER_TASK_CREATION_DATE, std::string("2026-01-31"));
  parameters_.Set(COMMON_PARAMETER_TASK_TIME_STAMP, 1767225600ull);
  performer_.SendStatusForProgrammedTask(parameters_, TaskResponseInfo::TASK_FAILED, "no");
  performer_.SendStatusForProgrammedTask(parameters_, TaskResponseInfo::TASK_FINISHED, nullptr);
  for (const auto& status : host_.communications->statuses) {
    EXPECT_EQ(status.taskName, "Ü");
    EXPECT_EQ(status.taskCreationDate, "2026-01-31");
    EXPECT_EQ(status.taskTimeStamp, "1767225600");
    EXPECT_EQ(status.requestId, "");
  }
  EXPECT_THAT(host_.communications->TakeStatuses(), ElementsAre("8 no", "2"));
}

TEST_F(ActionPerformerBaseTest, ThrowsWhenTheHostHasGone) {
  host_.dependencies.reset();
  host_.actions.reset();
  host_.communications.reset();
  EXPECT_THROW(performer_.RunOneShotAction(77, 0s, nullptr), std::bad_weak_ptr);
  EXPECT_THROW(performer_.RiseNewFileOnOutbox(), std::bad_weak_ptr);
  EXPECT_THROW(
      performer_.SendStatusForProgrammedTask(parameters_, TaskResponseInfo::TASK_STARTED, nullptr),
      std::bad_weak_ptr);
  EXPECT_THROW(Performer{host_.Dependencies()}, std::bad_weak_ptr);
}

TEST(ActionParameters, EnterAMissingNameWhenItIsReadAndRefuseAnotherType) {
  ActionParameters parameters;
  EXPECT_THROW(parameters.Get<wxString>("name"), boost::bad_get);
  EXPECT_TRUE(parameters.Exist("name"));
  EXPECT_FALSE(parameters.Get<bool>("name"));
}

}  // namespace
