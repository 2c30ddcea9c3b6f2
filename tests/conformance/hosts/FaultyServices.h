#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <set>
#include <string>

#include "common/database/AgentDatabase.h"
#include "common/identification/IIdentificationSystem.h"
#include "common/identification/SmBios.h"
#include "common/ipc/ICommunicationIPC.h"
#include "common/rest/ICommunicationSystem.h"
#include "host/actions/ActionSystem.h"

namespace Norvik::Conformance {

/// The one fault of the host in this process. Its name is a key of faults.json.
class Fault {
 public:
  explicit Fault(std::string name) : name_(std::move(name)) {}
  bool Is(const char* name) const { return name_ == name; }

 private:
  std::string name_;
};

class FaultyActions final : public Common::IActionSystem {
 public:
  FaultyActions(const Fault& fault, std::shared_ptr<Host::ActionSystem> good)
      : fault_(fault), good_(std::move(good)) {}

  void AddSchedule(const Common::Schedule& schedule) override;
  Common::ActionResponse RunAction(Common::ModuleAction action) override;
  void QueueAction(Common::ModuleAction action) override;
  void RunOneShot(unsigned int code, Common::ModuleAction action,
                  std::chrono::seconds delay) override;
  void CreatePeriodic(unsigned int code, Common::ModuleAction action, Common::AgentData& data,
                      const Common::ActionTiming& timing) override;
  void ReplacePeriodic(unsigned int code, Common::ModuleAction action, Common::AgentData& data,
                       const Common::ActionTiming& timing) override;

  std::atomic<bool> isModuleMade{false};

 private:
  Common::ModuleAction Wrapped(Common::ModuleAction action);

  const Fault fault_;
  const std::shared_ptr<Host::ActionSystem> good_;
  std::mutex alone_;
  std::atomic<bool> isBusy_{false};
  std::atomic<bool> hasFailed_{false};
  std::atomic<int> calls_{0};
  std::set<std::string> schedules_;
};

class FaultyIdentity final : public Common::IIdentificationSystem {
 public:
  explicit FaultyIdentity(const Fault& fault);

  Common::FirstInventoryInfo GetFirstInventoryInfo() override;
  std::weak_ptr<Common::SmBios> GetSmBios() override { return smBios_; }
  std::string GetAgentIdentifier() override;
  std::string GetToken() override;

 private:
  const Fault fault_;
  int start_;
  std::atomic<int> asked_{0};
  std::shared_ptr<Common::SmBios> smBios_;
};

class FaultyCommunications final : public Common::ICommunicationSystem,
                                   public Common::ICommunicationIPC {
 public:
  explicit FaultyCommunications(const Fault& fault) : fault_(fault) {}

  bool ProcessMessage(const Common::IRestRequest& request,
                      Common::IRestResponse& response) override;
  void ReportTaskStatus(const Common::TaskResponseInfo& status) override;
  void NewFileOnOutbox() override;
  bool Send(const Common::IPCMessage& message, unsigned long long session) override;
  std::map<unsigned long long, Common::IPCSessionData> GetSessions() override { return {}; }

 private:
  const Fault fault_;
};

class FaultyDataBase final : public Common::IDataBase {
 public:
  FaultyDataBase(const Fault& fault, const boost::filesystem::path& folder)
      : fault_(fault), good_(folder) {}

  std::unique_ptr<Common::DbResponseTable> GetTable(const std::string& name, int offset, int limit,
                                                    int order) override;

 private:
  const Fault fault_;
  Common::AgentDatabase good_;
  std::atomic<bool> isBusy_{false};
};

}  // namespace Norvik::Conformance
