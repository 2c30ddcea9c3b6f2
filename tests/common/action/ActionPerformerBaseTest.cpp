#include "common/action/ActionPerformerBase.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/action/ActionCodes.h"
#include "common/rest/ICommunicationSystem.h"
#include "support/LogCapture.h"

namespace {

using namespace Norvik::Common;
using namespace std::chrono_literals;
using Norvik::Tests::LogCapture;
using std::chrono::system_clock;

constexpr unsigned int LIST_FILES = 1002;

/// Writes down what it is asked for and runs nothing.
struct RecordingActions : IActionSystem {
  struct Call {
    std::string kind;
    unsigned int code;
    ModuleAction action;
    std::chrono::seconds delay{0};
    ActionTiming timing{};
  };
  void AddSchedule(const Schedule&) override {}
  ActionResponse RunAction(ModuleAction action) override {
    return action.handler(action.parameters);
  }
  void QueueAction(ModuleAction) override {}
  void RunOneShot(unsigned int code, ModuleAction action, std::chrono::seconds delay) override {
    calls.push_back({"once", code, action, delay});
  }
  void CreatePeriodic(unsigned int code, ModuleAction action, AgentData&,
                      const ActionTiming& timing) override {
    calls.push_back({"create", code, action, {}, timing});
  }
  void ReplacePeriodic(unsigned int code, ModuleAction action, AgentData&,
                       const ActionTiming& timing) override {
    calls.push_back({"replace", code, action, {}, timing});
  }
  std::vector<Call> calls;
};

struct RecordingServer : ICommunicationSystem {
  bool ProcessMessage(const IRestRequest&, IRestResponse&) override { return false; }
  void ReportTaskStatus(const TaskResponseInfo& status) override { statuses.push_back(status); }
  void NewFileOnOutbox() override { ++files; }
  std::vector<TaskResponseInfo> statuses;
  int files = 0;
};

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

  ActionResponse First(ActionParameters&) { return Answer(1); }
  ActionResponse Second(ActionParameters& parameters) {
    parameters.Set("seen", true);
    return Answer(2);
  }
  HandlerMap handlers;

 private:
  static ActionResponse Answer(int result) {
    ActionResponse response;
    response.result = result;
    return response;
  }
};

class ActionPerformerBaseTest : public testing::Test {
 protected:
  ActionPerformerBaseTest() {
    dependencies_->processKind = 3;
    dependencies_->actionSystem = actions_;
    dependencies_->communications = server_;
    performer_ = std::make_unique<Performer>(dependencies_);
  }

  std::shared_ptr<RecordingActions> actions_ = std::make_shared<RecordingActions>();
  std::shared_ptr<RecordingServer> server_ = std::make_shared<RecordingServer>();
  std::shared_ptr<ModuleDependencies> dependencies_ = std::make_shared<ModuleDependencies>();
  std::unique_ptr<Performer> performer_;
  AgentData data_{std::weak_ptr<IDataBase>(), "DATA"};
};

TEST_F(ActionPerformerBaseTest, RunsTheLastHandlerOfACodeWithItsOwnParameters) {
  ActionParameters parameters;
  parameters.Set("path", wxString("/"));
  ModuleAction action = performer_->GetAction(LIST_FILES, parameters, performer_->handlers);
  EXPECT_EQ(action.name, "ACTION_LIST_FILES");
  EXPECT_EQ(action.parameters.Get<wxString>("path"), "/");
  EXPECT_EQ(action.handler(action.parameters).result, 2);
  EXPECT_TRUE(action.parameters.Exist("seen"));
  EXPECT_FALSE(parameters.Exist("seen"));
  EXPECT_EQ(performer_->GetAction(77, parameters, performer_->handlers).name, "77");
}

TEST_F(ActionPerformerBaseTest, AnswersAnUnknownCodeWithOneWarning) {
  const LogCapture log;
  ModuleAction action = performer_->GetAction(1234567, {}, performer_->handlers);
  EXPECT_EQ(action.name, "");
  EXPECT_EQ(log.Lines().size(), 0u);
  const ActionResponse response = action.handler(action.parameters);
  EXPECT_EQ(response.result, 0);
  EXPECT_FALSE(response.text);
  const auto warnings = log.Texts(Logger::LEVEL_WARNING);
  ASSERT_EQ(warnings.size(), 1u);
  EXPECT_NE(warnings[0].find("1234567"), std::string::npos);
}

TEST_F(ActionPerformerBaseTest, SchedulesThroughTheFactory) {
  ActionParameters parameters;
  parameters.Set("x", true);
  performer_->RunOneShotAction(LIST_FILES, 5s, &parameters);
  performer_->RunOneShotAction(LIST_FILES, 0s, nullptr);
  const auto before = system_clock::now();
  performer_->CreatePeriodicAction(77, data_, 60s, 3s);
  performer_->ReplacePeriodicAction(77, data_, 60s, 3s);
  const ScheduleInfo schedule{86400, 1767225600};
  performer_->ReplacePeriodicAction(77, data_, &schedule);
  performer_->ReplacePeriodicAction(77, data_, nullptr);

  auto& calls = actions_->calls;
  ASSERT_EQ(calls.size(), 5u);
  EXPECT_EQ(calls[0].kind, "once");
  EXPECT_EQ(calls[0].delay, 5s);
  EXPECT_EQ(calls[0].action.name, "ACTION_LIST_FILES");
  EXPECT_TRUE(calls[0].action.parameters.Exist("x"));
  EXPECT_TRUE(calls[1].action.parameters.Values().empty());
  EXPECT_EQ(calls[2].kind, "create");
  EXPECT_EQ(calls[3].kind, "replace");
  for (const auto& call : {calls[2], calls[3]}) {
    EXPECT_EQ(call.timing.period, 60s);
    EXPECT_GE(call.timing.next, before + 3s);
    EXPECT_LE(call.timing.next, system_clock::now() + 3s);
  }
  EXPECT_EQ(calls[4].timing.period, 86400s);
  EXPECT_EQ(system_clock::to_time_t(calls[4].timing.next), 1767225600);
}

TEST_F(ActionPerformerBaseTest, ReportsATaskFromParametersOfEitherTextType) {
  ActionParameters parameters;
  parameters.Set(COMMON_PARAMETER_TASK_NAME, wxString::FromUTF8("Ü"));
  parameters.Set(COMMON_PARAMETER_TASK_CREATION_DATE, std::string("2026-01-31"));
  parameters.Set(COMMON_PARAMETER_TASK_TIME_STAMP, 1767225600ull);
  performer_->SendStatusForProgrammedTask(parameters, TaskResponseInfo::TASK_FAILED, "no");
  performer_->SendStatusForProgrammedTask(parameters, TaskResponseInfo::TASK_FINISHED, nullptr);
  EXPECT_FALSE(parameters.Exist(COMMON_PARAMETER_REQUEST_ID));
  ASSERT_EQ(server_->statuses.size(), 2u);
  const TaskResponseInfo& status = server_->statuses[0];
  EXPECT_EQ(status.status, 8u);
  EXPECT_EQ(status.message, "no");
  EXPECT_EQ(status.taskName, "Ü");
  EXPECT_EQ(status.taskCreationDate, "2026-01-31");
  EXPECT_EQ(status.taskTimeStamp, "1767225600");
  EXPECT_EQ(status.requestId, "");
  EXPECT_EQ(server_->statuses[1].message, "");
  performer_->RiseNewFileOnOutbox();
  EXPECT_EQ(server_->files, 1);
}

TEST_F(ActionPerformerBaseTest, RaisesWhenTheHostHasGone) {
  EXPECT_EQ(performer_->processKind, 3);
  actions_.reset();
  server_.reset();
  ActionParameters parameters;
  EXPECT_THROW(performer_->RunOneShotAction(77, 0s, nullptr), std::bad_weak_ptr);
  EXPECT_THROW(performer_->CreatePeriodicAction(77, data_, 1s, 1s), std::bad_weak_ptr);
  EXPECT_THROW(performer_->RiseNewFileOnOutbox(), std::bad_weak_ptr);
  EXPECT_THROW(
      performer_->SendStatusForProgrammedTask(parameters, TaskResponseInfo::TASK_STARTED, nullptr),
      std::bad_weak_ptr);
  dependencies_.reset();
  EXPECT_THROW(Performer{dependencies_}, std::bad_weak_ptr);
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
