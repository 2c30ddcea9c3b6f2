#include "support/FakeHost.h"

#include <boost/property_tree/json_parser.hpp>
#include <sstream>

#include "common/action/ActionCodes.h"
#include "common/files/Archive.h"
#include "common/files/FileSealer.h"
#include "common/files/Paths.h"

namespace Norvik::Tests {

namespace fs = boost::filesystem;
using Common::Paths;

namespace {

unsigned int CodeOf(const Common::ModuleAction& action) {
  for (const auto& name : Common::ACTION_NAMES) {
    if (action.name == name.name) return name.code;
  }
  return 0;
}

std::string TextOf(const FakeActionSystem::Started& started) {
  std::string text = started.what + " " + std::to_string(started.code);
  if (started.what == "once") return text + " +" + std::to_string(started.delay.count());
  if (started.what == "create" || started.what == "replace") {
    text += " every " + std::to_string(started.timing.period.count());
  }
  return text;
}

}  // namespace

void FakeActionSystem::Record(Started started) {
  started_.push_back(std::move(started));
  if (const auto hook = std::exchange(onNextStart, nullptr)) hook();
}

Common::ActionResponse FakeActionSystem::RunAction(Common::ModuleAction action) {
  Record({"run", CodeOf(action), action, {}, {}});
  return action.handler(action.parameters);
}

void FakeActionSystem::QueueAction(Common::ModuleAction action) {
  Record({"queue", CodeOf(action), action, {}, {}});
  waiting_.push_back(std::move(action));
}

void FakeActionSystem::RunOneShot(unsigned int code, Common::ModuleAction action,
                                  std::chrono::seconds delay) {
  Record({"once", code, action, delay, {}});
  if (delay.count() == 0) waiting_.push_back(std::move(action));
}

std::vector<std::string> FakeActionSystem::Texts() const {
  std::vector<std::string> texts;
  std::transform(started_.begin(), started_.end(), std::back_inserter(texts), TextOf);
  return texts;
}

const FakeActionSystem::Started& FakeActionSystem::Last(unsigned int code) const {
  const auto found = std::find_if(started_.rbegin(), started_.rend(),
                                  [&](const Started& started) { return started.code == code; });
  if (found == started_.rend()) throw std::logic_error("nothing started " + std::to_string(code));
  return *found;
}

void FakeActionSystem::RunWaiting() {
  for (; !waiting_.empty(); waiting_.pop_front()) {
    waiting_.front().handler(waiting_.front().parameters);
  }
}

bool FakeCommunications::ProcessMessage(const Common::IRestRequest& request,
                                        Common::IRestResponse& response) {
  requests.push_back(static_cast<json::JSON>(request).strUgly());
  if (answer.empty()) return false;
  std::istringstream text(answer);
  boost::property_tree::ptree body;
  boost::property_tree::read_json(text, body);
  response.Assign(body);
  return true;
}

bool FakeCommunications::Send(const Common::IPCMessage& message, unsigned long long session) {
  sent.emplace_back(session, message);
  if (const auto hook = std::exchange(onNextSend, nullptr)) hook();
  return accepts;
}

std::vector<std::string> FakeCommunications::TakeStatuses() {
  std::vector<std::string> texts;
  for (const auto& status : std::exchange(statuses, {})) {
    texts.push_back(std::to_string(status.status));
    if (!status.message.empty()) texts.back() += " " + status.message;
  }
  return texts;
}

Common::FirstInventoryInfo FakeIdentification::GetFirstInventoryInfo() {
  if (!failure.empty()) throw std::runtime_error(failure);
  return first;
}

bool FaultPipeline::Fails(const std::string& step, const char* kind) {
  calls.push_back(step + kind);
  if (beforeStep) beforeStep(step);
  return step == failingStep;
}

FakeHost::FakeHost(int processKind)
    : previousFolder_(Paths(Paths::DATA, false).AppData()),
      previousPipeline_(Common::GetFilePipeline()) {
  Paths::SetDataFolder(database.Folder());
  pipeline = std::make_shared<FaultPipeline>(previousPipeline_);
  Common::SetFilePipeline(pipeline);
  dependencies->configuration.kob.emplace();
  dependencies->processKind = processKind;
  dependencies->identification = identification;
  dependencies->actionSystem = actions;
  dependencies->communications = communications;
  dependencies->dataBase = database.Get();
}

FakeHost::~FakeHost() {
  Common::SetFilePipeline(std::move(previousPipeline_));
  Paths::SetDataFolder(previousFolder_);
}

fs::path FakeHost::Outbox() const { return Paths(Paths::OUTBOX, true).AppData(); }

fs::path FakeHost::Work() const { return Paths(Paths::WORK, true).AppData(); }

fs::path FakeHost::Previous() const { return Paths(Paths::PREVIOUS_INVENTORY, true).AppData(); }

std::string FakeHost::DeliveredDocument() const {
  const auto names = NamesIn(Outbox());
  if (names.size() != 1) {
    throw std::runtime_error(std::to_string(names.size()) + " files in the outbox");
  }
  const fs::path archive = Folder() / "opened.zip";
  Common::FileSealer(Folder() / "keys").Open(Outbox() / names.front(), archive);
  return Common::ReadArchive(archive);
}

std::vector<std::string> NamesIn(const fs::path& folder) {
  std::vector<std::string> names;
  if (!fs::exists(folder)) return names;
  for (const auto& entry : fs::directory_iterator(folder)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace Norvik::Tests

// A module deliberately does not delete its change checker.
extern "C" __attribute__((used, visibility("default"))) const char* __lsan_default_suppressions() {
  return "leak:SoftwareChangesChecker\n";
}
