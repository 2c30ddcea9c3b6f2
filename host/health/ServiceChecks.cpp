#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <boost/filesystem/operations.hpp>

#include "host/health/Checks.h"
#include "host/health/InstalledService.h"
#include "platform/ChildProcess.h"

namespace Norvik::Host {

namespace {

namespace fs = boost::filesystem;

constexpr mode_t EVERYBODY_CONNECTS = S_IWUSR | S_IWGRP | S_IWOTH;

Finding FindDescription(const InstalledService& service) {
  for (const std::string& file : service.descriptions) {
    const Presence presence = ReadablePresenceOf(file);
    if (presence == Presence::THERE) return {Outcome::OK, file};
    if (presence == Presence::HIDDEN) return UnreadableFinding(file);
  }
  return {Outcome::WARNING, "there is no " + service.descriptions.front()};
}

/// Whether the agent at the socket tells this user nothing, although it may be well.
bool IsForOthers(const Examined& examined) {
  struct stat status {};
  if (::geteuid() == 0) return false;
  return ::stat(examined.Options().socket.c_str(), &status) != 0 || status.st_uid != ::geteuid();
}

Finding AskedInVain() {
  return {Outcome::UNKNOWN, "an agent serves the socket, but answers only root and its own user",
          "run the check as one of them"};
}

}  // namespace

Finding FindServiceInstalled(const Examined& /*examined*/) {
  return FindDescription(MachineService());
}

Finding FindServiceLoaded(const Examined& /*examined*/) {
  const InstalledService service = MachineService();
  Platform::ChildCommand command;
  command.words = service.question;
  command.isQuery = true;
  command.timeLimit = Examined::LIMIT;
  command.onOutput = [](std::string_view) {};
  const Platform::ChildResult result = Platform::RunChild(command);
  const std::string program = service.question.front();
  if (!result.started) {
    return {Outcome::UNKNOWN, program + " cannot be asked: " + result.problem};
  }
  if (result.exitCode == 0) return {Outcome::OK, program + " knows it"};
  const auto& no = service.notLoaded;
  if (std::find(no.begin(), no.end(), result.exitCode) != no.end()) {
    return {Outcome::WARNING, program + " says that it is not loaded"};
  }
  return {Outcome::UNKNOWN, program + " gave no answer, code " + std::to_string(result.exitCode)};
}

Finding FindServiceAnswers(const Examined& examined) {
  const AgentAnswer& agent = examined.Agent();
  const std::string socket = examined.Options().socket.string();
  if (!agent.status.is_null()) {
    const std::string folder = agent.status.value("dataFolder", "");
    const std::string process = "process " + agent.status.value("processId", OrderedJson()).dump();
    if (folder == examined.Options().dataFolder.string()) return {Outcome::OK, process};
    return {Outcome::WARNING, process + " serves " + socket + ", but works with " + folder,
            "name that folder by --data", std::string()};
  }
  if (PresenceOf(socket) == Presence::HIDDEN) return UnreadableFinding(socket);
  if (!agent.isServed) {
    return {Outcome::ERROR, "no agent answers at " + socket + ": " + agent.problem};
  }
  if (IsForOthers(examined)) return AskedInVain();
  return {Outcome::ERROR, "an agent serves " + socket + ", but does not answer: " + agent.problem};
}

Finding FindSocketRights(const Examined& examined) {
  const fs::path& socket = examined.Options().socket;
  struct stat status {};
  if (::lstat(socket.c_str(), &status) != 0) {
    const bool isMissing = PresenceOf(socket) == Presence::MISSING;
    if (!isMissing) return UnreadableFinding(socket.string());
    return {Outcome::UNKNOWN, "there is no " + socket.string() + ", as no agent runs",
            "see the check service-answers"};
  }
  if (!S_ISSOCK(status.st_mode)) return {Outcome::ERROR, socket.string() + " is no socket"};
  if ((status.st_mode & EVERYBODY_CONNECTS) != EVERYBODY_CONNECTS) {
    return {Outcome::WARNING, "not every user may connect to " + socket.string()};
  }
  const fs::path folder = fs::absolute(socket).parent_path();
  const bool isOpen = ::stat(folder.c_str(), &status) == 0 && (status.st_mode & S_IWOTH) != 0;
  if (isOpen && (status.st_mode & S_ISVTX) == 0) {
    return {Outcome::ERROR, "everybody may replace the socket in " + folder.string()};
  }
  return {Outcome::OK, socket.string()};
}

Finding FindUserProcesses(const Examined& examined) {
  const AgentAnswer& agent = examined.Agent();
  if (agent.status.is_null()) {
    if (agent.isServed && IsForOthers(examined)) return AskedInVain();
    return {Outcome::UNKNOWN, "no agent answers that could say it",
            "see the check service-answers"};
  }
  const std::size_t count = agent.status.value("sessions", OrderedJson::array()).size();
  if (count == 0) return {Outcome::INFORMATION, "no user's process is connected"};
  return {Outcome::OK, std::to_string(count) + " are connected"};
}

Finding FindUserAgent(const Examined& /*examined*/) { return FindDescription(UserService()); }

}  // namespace Norvik::Host
