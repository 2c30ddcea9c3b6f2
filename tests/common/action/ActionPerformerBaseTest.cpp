#include "common/action/ActionPerformerBase.h"

#include <gmock/gmock.h>

#include "common/action/ActionCodes.h"
#include "support/FakeHost.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Tests;
using namespace std::chrono_literals;
using std::chrono::system_clock;
using namespace testing;

constexpr unsigned int LIST_FILES = 1002;

/// Makes reachable what a class of actions uses.
class Performer : public ActionPerformerBase {
 public:
  explicit Performer(std::weak_ptr<ModuleDependencies> dependencies)
      : ActionPerformerBase(
            PRODUCT_KOB,
            [this](unsigned int code, const ActionParameters& parameters) {
              return GetAction(code, parameters, handlers);
            },
            std::move(dependencies)) {
    CreateActionRunner(handlers, LIST_FILES, &Performer::First, this);
    CreateActionRunner(handlers, LIST_FILES, &Performer::Second, this);
    CreateActionRunner(handlers, 77u, &Performer::First, this);
  }
  using ActionPerformerBase::CreatePeriodicAction;
  using ActionPerformerBase::GetAction;
  using ActionPerformerBase::processKind;
  using ActionPerformerBase::ReplacePeriodicAction;
  using ActionPerformerBase::RiseNewFileOnOutbox;
  using ActionPerformerBase::RunOneShotAction;
  using ActionPerformerBase::SendStatusForProgrammedTask;

  ActionResponse First(ActionParameters&) { return {}; }
  ActionResponse Second(ActionParameters& parameters) {
    parameters.Set("seen", true);
    ActionResponse response;
    response.result = 2;
    return response;
  }
  HandlerMap handlers;
};

class ActionPerformerBaseTest : public Test {
 protected:
  FakeHost host_{3};
  Performer performer_{host_.Dependencies()};
  AgentData data_{std::weak_ptr<IDataBase>(), "DATA"};
  ActionParameters parameters_;
};

TEST_F(ActionPerformerBaseTest, RunsTheLastHandlerOfACodeWithItsOwnParameters) {
  parameters_.Set("path", wxString("/"));
  ModuleAction action = performer_.GetAction(LIST_FILES, parameters_, performer_.handlers);
  EXPECT_EQ(action.name, "ACTION_LIST_FILES");
  EXPECT_EQ(action.parameters.Get<wxString>("path"), "/");
  EXPECT_EQ(action.handler(action.parameters).result, 2);
  EXPECT_TRUE(action.parameters.Exist("seen"));
  EXPECT_FALSE(parameters_.Exist("seen"));
  EXPECT_EQ(performer_.GetAction(77, parameters_, performer_.handlers).name, "77");
}

TEST_F(ActionPerformerBaseTest, AnswersAnUnknownCodeWithOneWarning) {
  const LogCapture log;
  ModuleAction action = performer_.GetAction(1234567, {}, performer_.handlers);
  EXPECT_EQ(action.name, "");
  EXPECT_EQ(log.Lines().size(), 0u);
  const ActionResponse response = action.handler(action.parameters);
  EXPECT_EQ(response.result, 0);
  EXPECT_FALSE(response.text);
  EXPECT_THAT(log.Texts(Logger::LEVEL_WARNING), ElementsAre(HasSubstr("1234567")));
}

TEST_F(ActionPerformerBaseTest, SchedulesThroughTheFactory) {
  parameters_.Set("x", true);
  performer_.RunOneShotAction(LIST_FILES, 5s, &parameters_);
  performer_.RunOneShotAction(LIST_FILES, 0s, nullptr);
  const auto before = system_clock::now();
  performer_.CreatePeriodicAction(77, data_, 60s, 3s);
  performer_.ReplacePeriodicAction(77, data_, 60s, 3s);
  const ScheduleInfo schedule{86400, 1767225600};
  performer_.ReplacePeriodicAction(77, data_, &schedule);
  performer_.ReplacePeriodicAction(77, data_, nullptr);

  ASSERT_THAT(host_.actions->Texts(),
              ElementsAre("once 1002 +5", "once 1002 +0", "create 77 every 60",
                          "replace 77 every 60", "replace 77 every 86400"));
  const auto& started = host_.actions->All();
  EXPECT_EQ(started[0].action.name, "ACTION_LIST_FILES");
  EXPECT_TRUE(started[0].action.parameters.Exist("x"));
  EXPECT_TRUE(started[1].action.parameters.Values().empty());
  for (const auto& delayed : {started[2], started[3]}) {
    EXPECT_GE(delayed.timing.next, before + 3s);
    EXPECT_LE(delayed.timing.next, system_clock::now() + 3s);
  }
  EXPECT_EQ(system_clock::to_time_t(started[4].timing.next), 1767225600);
}

TEST_F(ActionPerformerBaseTest, ReportsATaskFromParametersOfEitherTextType) {
  parameters_.Set(COMMON_PARAMETER_TASK_NAME, wxString::FromUTF8("Ü"));
  parameters_.Set(COMMON_PARAMETER_TASK_CREATION_DATE, std::string("2026-01-31"));
  parameters_.Set(COMMON_PARAMETER_TASK_TIME_STAMP, 1767225600ull);
  performer_.SendStatusForProgrammedTask(parameters_, TaskResponseInfo::TASK_FAILED, "no");
  performer_.SendStatusForProgrammedTask(parameters_, TaskResponseInfo::TASK_FINISHED, nullptr);
  EXPECT_FALSE(parameters_.Exist(COMMON_PARAMETER_REQUEST_ID));
  for (const auto& status : host_.communications->statuses) {
    EXPECT_EQ(status.taskName, "Ü");
    EXPECT_EQ(status.taskCreationDate, "2026-01-31");
    EXPECT_EQ(status.taskTimeStamp, "1767225600");
    EXPECT_EQ(status.requestId, "");
  }
  EXPECT_THAT(host_.communications->TakeStatuses(), ElementsAre("8 no", "2"));
  performer_.RiseNewFileOnOutbox();
  EXPECT_EQ(host_.communications->newFiles, 1);
}

TEST_F(ActionPerformerBaseTest, RaisesWhenTheHostHasGone) {
  EXPECT_EQ(performer_.processKind, 3);
  host_.dependencies.reset();
  host_.actions.reset();
  host_.communications.reset();
  EXPECT_THROW(performer_.RunOneShotAction(77, 0s, nullptr), std::bad_weak_ptr);
  EXPECT_THROW(performer_.CreatePeriodicAction(77, data_, 1s, 1s), std::bad_weak_ptr);
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

TEST(ActionResponseTable, MakesItsFirstRowForACell) {
  ActionResponseTable table;
  table.AddCellToLastRow(wxString("a"));
  table.AddNewRow();
  table.AddCellToLastRow(wxString("b"));
  table.AddCellToLastRow(wxString("c"));
  ASSERT_EQ(table.Rows().size(), 2u);
  EXPECT_EQ(table.Rows()[1].size(), 2u);
}

}  // namespace
