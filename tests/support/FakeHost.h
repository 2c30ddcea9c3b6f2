#pragma once

#include <deque>
#include <functional>

#include "common/action/IActionSystem.h"
#include "common/action/ModuleDependencies.h"
#include "common/files/FilePipeline.h"
#include "common/identification/IIdentificationSystem.h"
#include "common/ipc/ICommunicationIPC.h"
#include "common/rest/ICommunicationSystem.h"
#include "support/LogCapture.h"
#include "support/TestDatabase.h"

namespace Norvik::Tests {

/// Records what is started, in order. Runs actions only in `RunAction` and `RunWaiting`.
class FakeActionSystem final : public Common::IActionSystem {
 public:
  struct Started {
    std::string what;  ///< "run", "queue", "once", "create", "replace" or "schedule"
    unsigned int code = 0;
    Common::ModuleAction action;
    std::chrono::seconds delay{0};  ///< of "once"
    Common::ActionTiming timing;    ///< of "create" and "replace"
  };

  /// Codes are derived from the name of the action, so the actions must come from a loaded module.
  void AddSchedule(const Common::Schedule& schedule) override {
    Record({"schedule", schedule.code, {}, {}, {}});
  }
  Common::ActionResponse RunAction(Common::ModuleAction action) override;
  void QueueAction(Common::ModuleAction action) override;
  void RunOneShot(unsigned int code, Common::ModuleAction action,
                  std::chrono::seconds delay) override;
  void CreatePeriodic(unsigned int code, Common::ModuleAction action, Common::AgentData& /*data*/,
                      const Common::ActionTiming& timing) override {
    Record({"create", code, std::move(action), {}, timing});
  }
  void ReplacePeriodic(unsigned int code, Common::ModuleAction action, Common::AgentData& /*data*/,
                       const Common::ActionTiming& timing) override {
    Record({"replace", code, std::move(action), {}, timing});
  }

  /// Everything that was started since the last `Forget`, one text each: "run 32004", "queue 1036",
  /// "once 1071 +60", "create 1072 every 432000", "replace 1036 every 3600".
  std::vector<std::string> Texts() const;
  const std::vector<Started>& All() const { return started_; }
  /// The last one with the code. Throws `std::logic_error` without such an action.
  const Started& Last(unsigned int code) const;
  void Forget() { started_.clear(); }

  /// Runs the waiting actions (queued, or once without delay), the oldest first.
  void RunWaiting();

  std::function<void()> onNextStart;

 private:
  void Record(Started started);

  std::vector<Started> started_;
  std::deque<Common::ModuleAction> waiting_;
};

/// Stands for the server and the users' processes.
class FakeCommunications final : public Common::ICommunicationSystem,
                                 public Common::ICommunicationIPC {
 public:
  bool ProcessMessage(const Common::IRestRequest& request,
                      Common::IRestResponse& response) override;
  void ReportTaskStatus(const Common::TaskResponseInfo& status) override {
    statuses.push_back(status);
  }
  void NewFileOnOutbox() override { ++newFiles; }
  bool Send(const Common::IPCMessage& message, unsigned long long session) override;
  std::map<unsigned long long, Common::IPCSessionData> GetSessions() override { return sessions; }

  /// Returns and removes the statuses since the last call, in order: "7", "8 reason".
  std::vector<std::string> TakeStatuses();

  std::string answer;  ///< body of the server's answers; if empty, there is no server
  std::vector<std::string> requests;  ///< bodies of the requests
  std::map<unsigned long long, Common::IPCSessionData> sessions;
  bool accepts = true;               ///< result of `Send`
  std::function<void()> onNextSend;  ///< called once
  std::vector<std::pair<unsigned long long, Common::IPCMessage>> sent;
  std::vector<Common::TaskResponseInfo> statuses;
  int newFiles = 0;
};

class FakeIdentification final : public Common::IIdentificationSystem {
 public:
  /// Throws `std::runtime_error` with the text of `failure`, unless that is empty.
  Common::FirstInventoryInfo GetFirstInventoryInfo() override;
  std::weak_ptr<Common::SmBios> GetSmBios() override { return smBios; }
  std::string GetAgentIdentifier() override { return identifier; }
  std::string GetToken() override { return token; }

  Common::FirstInventoryInfo first;
  std::shared_ptr<Common::SmBios> smBios = std::make_shared<Common::SmBios>();
  std::string identifier = "agent-1";
  std::string token = "token-1";
  std::string failure;
};

/// Forwards each step to the pipeline that it replaces, except the step that must fail.
class FaultPipeline final : public Common::IFilePipeline {
 public:
  using Path = boost::filesystem::path;

  explicit FaultPipeline(std::shared_ptr<Common::IFilePipeline> next) : next_(std::move(next)) {}

  bool Compress(const Path& source, const Path& target) override {
    return !Fails("compress") && next_->Compress(source, target);
  }
  bool Encrypt(const Path& source, const Path& target) override {
    return !Fails("encrypt") && next_->Encrypt(source, target);
  }
  bool Copy(const Path& source, const Path& target) override {
    return !Fails("copy") && next_->Copy(source, target);
  }
  bool MoveToOutbox(const Path& file, const boost::optional<bool>& incremental) override {
    const char* const kind = !incremental ? "" : *incremental ? " incremental" : " total";
    return !Fails("move", kind) && next_->MoveToOutbox(file, incremental);
  }

  std::string failingStep;  ///< "copy", "compress", "encrypt" or "move"
  std::function<void(const std::string& step)> beforeStep;
  std::vector<std::string> calls;  ///< steps in order; the move as "move", "move total" or
                                   ///< "move incremental"

 private:
  bool Fails(const std::string& step, const char* kind = "");

  std::shared_ptr<Common::IFilePipeline> next_;
};

/// Everything that a module needs from its host, controlled by a test, in its own data folder.
/// Replaces the process's data folder, log, file pipeline and database, and restores them at the
/// end. The module must be destroyed first.
class FakeHost {
 public:
  explicit FakeHost(int processKind = 0);
  ~FakeHost();

  std::weak_ptr<Common::ModuleDependencies> Dependencies() const { return dependencies; }
  boost::filesystem::path Folder() const { return database.Folder(); }
  // Folders of the module's files; created if they are missing.
  boost::filesystem::path Outbox() const;
  boost::filesystem::path Work() const;
  boost::filesystem::path Previous() const;
  /// The only document in the outbox, decrypted and unpacked. Throws if there is not exactly one or
  /// it cannot be opened.
  std::string DeliveredDocument() const;

  TestDatabase database;
  LogCapture log;
  std::shared_ptr<FakeActionSystem> actions = std::make_shared<FakeActionSystem>();
  std::shared_ptr<FakeCommunications> communications = std::make_shared<FakeCommunications>();
  std::shared_ptr<FakeIdentification> identification = std::make_shared<FakeIdentification>();
  std::shared_ptr<FaultPipeline> pipeline;
  std::shared_ptr<Common::ModuleDependencies> dependencies =
      std::make_shared<Common::ModuleDependencies>();

 private:
  boost::filesystem::path previousFolder_;
  std::shared_ptr<Common::IFilePipeline> previousPipeline_;
};

/// Names in a folder, sorted; empty if it does not exist.
std::vector<std::string> NamesIn(const boost::filesystem::path& folder);

}  // namespace Norvik::Tests
