#include "conformance/hosts/FaultyServices.h"

#include <unistd.h>

#include <boost/property_tree/ptree.hpp>
#include <cstdlib>
#include <future>
#include <thread>

#include "common/files/Paths.h"
#include "common/log/Logger.h"

namespace Norvik::Conformance {

using namespace Common;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

thread_local bool isInHandler = false;

class NoLogger final : public Logger {
  void Log(Level, const std::string&, const char*, int, const char*) override {}
};

}  // namespace

ModuleAction FaultyActions::Wrapped(ModuleAction action) {
  action.handler = [this, handler = action.handler](ActionParameters& parameters) {
    if (hasFailed_) return ActionResponse();
    std::unique_lock<std::mutex> lock(alone_, std::defer_lock);
    if (fault_.Is("one handler at a time")) lock.lock();
    isInHandler = true;
    try {
      const ActionResponse response = handler(parameters);
      isInHandler = false;
      return response;
    } catch (...) {
      isInHandler = false;
      hasFailed_ = fault_.Is("an exception ends all");
      throw;
    }
  };
  return action;
}

void FaultyActions::AddSchedule(const Schedule& schedule) {
  Schedule changed = schedule;
  if (fault_.Is("each schedule is new")) changed.identifier += std::to_string(++calls_);
  const bool isNew = schedules_.insert(schedule.identifier).second;
  if (isNew || !fault_.Is("the first schedule stays")) good_->AddSchedule(changed);
}

ActionResponse FaultyActions::RunAction(ModuleAction action) {
  if (fault_.Is("RunAction uses another thread")) {
    return std::async(std::launch::async, [&] { return good_->RunAction(action); }).get();
  }
  try {
    const ActionResponse response = good_->RunAction(action);
    return fault_.Is("RunAction drops the response") ? ActionResponse() : response;
  } catch (...) {
    if (!fault_.Is("RunAction swallows exceptions")) throw;
    return {};
  }
}

void FaultyActions::QueueAction(ModuleAction action) {
  if (fault_.Is("the queue aborts")) std::abort();
  if (fault_.Is("the queue hangs")) std::this_thread::sleep_for(seconds(600));
  if (fault_.Is("the queue throws")) throw std::runtime_error("queue \x1b[31mfull\xff");
  if (fault_.Is("services too early") && !isModuleMade) throw std::runtime_error("too early");
  if (fault_.Is("the queue runs it")) {
    action.handler(action.parameters);
    return;
  }
  if (fault_.Is("the queue drops some") && ++calls_ % 50 == 0) return;
  if (fault_.Is("calls at once are lost")) {
    if (isBusy_.exchange(true)) return;
    std::this_thread::sleep_for(milliseconds(1));
    isBusy_ = false;
  }
  good_->QueueAction(Wrapped(std::move(action)));
}

void FaultyActions::RunOneShot(unsigned int code, ModuleAction action, seconds delay) {
  if (isInHandler && fault_.Is("handlers start nothing")) return;
  if (fault_.Is("a one-shot is waited for")) {
    std::async(std::launch::async, [&] { action.handler(action.parameters); }).get();
    return;
  }
  if (fault_.Is("a one-shot runs twice")) good_->RunOneShot(code, Wrapped(action), delay);
  if (fault_.Is("delays are left out")) delay = seconds(0);
  if (fault_.Is("delayed actions are lost") && delay > seconds(0)) return;
  good_->RunOneShot(code, Wrapped(std::move(action)), delay);
}

void FaultyActions::CreatePeriodic(unsigned int code, ModuleAction action, AgentData& data,
                                   const ActionTiming& timing) {
  ActionTiming changed = timing;
  if (fault_.Is("periods are 0")) changed.period = seconds(0);
  if (fault_.Is("periodic actions are early")) changed.next -= seconds(10);
  if (fault_.Is("create replaces")) {
    good_->ReplacePeriodic(code, Wrapped(std::move(action)), data, changed);
  } else {
    good_->CreatePeriodic(code, Wrapped(std::move(action)), data, changed);
  }
}

void FaultyActions::ReplacePeriodic(unsigned int code, ModuleAction action, AgentData& data,
                                    const ActionTiming& timing) {
  ActionTiming changed = timing;
  if (fault_.Is("period 0 is 1") && timing.period == seconds(0)) changed.period = seconds(1);
  if (fault_.Is("replace keeps")) {
    good_->CreatePeriodic(code, Wrapped(std::move(action)), data, changed);
  } else {
    good_->ReplacePeriodic(code, Wrapped(std::move(action)), data, changed);
  }
}

FaultyIdentity::FaultyIdentity(const Fault& fault) : fault_(fault) {
  static int starts = 0;
  start_ = ++starts;
  if (!fault_.Is("no SMBIOS object")) smBios_ = std::make_shared<SmBios>();
}

FirstInventoryInfo FaultyIdentity::GetFirstInventoryInfo() {
  if (++asked_ > 1 && fault_.Is("facts only once")) throw std::runtime_error("asked before");
  FirstInventoryInfo facts;
  facts.hostName = "host";
  return facts;
}

std::string FaultyIdentity::GetAgentIdentifier() {
  if (fault_.Is("no identifier")) return "";
  return fault_.Is("a new identifier") ? "agent-" + std::to_string(start_) : "agent";
}

std::string FaultyIdentity::GetToken() {
  return fault_.Is("a new token") ? "token-" + std::to_string(start_) : "token";
}

bool FaultyCommunications::ProcessMessage(const IRestRequest&, IRestResponse& response) {
  if (fault_.Is("the response is cleared")) response.Assign({});
  return fault_.Is("every question is answered");
}

void FaultyCommunications::ReportTaskStatus(const TaskResponseInfo&) {
  if (fault_.Is("statuses wait")) std::this_thread::sleep_for(milliseconds(1200));
  if (fault_.Is("another logger")) Logger::SetInstance(std::make_shared<NoLogger>());
  if (fault_.Is("another data folder")) Paths::SetDataFolder("/nowhere");
}

void FaultyCommunications::NewFileOnOutbox() {
  if (fault_.Is("new files wait")) std::this_thread::sleep_for(milliseconds(1200));
  if (fault_.Is("another current folder") && ::chdir("/") != 0) std::abort();
}

bool FaultyCommunications::Send(const IPCMessage&, unsigned long long) {
  return fault_.Is("messages to nobody");
}

std::unique_ptr<DbResponseTable> FaultyDataBase::GetTable(const std::string& name, int offset,
                                                          int limit, int order) {
  const bool isAlone = fault_.Is("the database is for one thread");
  if (isAlone && isBusy_.exchange(true)) throw std::runtime_error("the database is busy");
  if (isAlone) std::this_thread::sleep_for(milliseconds(2));
  auto table = good_.GetTable(name, offset, limit, order);
  isBusy_ = false;
  return table;
}

}  // namespace Norvik::Conformance
