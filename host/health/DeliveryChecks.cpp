#include <boost/filesystem/operations.hpp>
#include <nlohmann/json.hpp>

#include "common/action/InventorySchedules.h"
#include "host/actions/Clock.h"
#include "host/data/DataFolder.h"
#include "host/health/Checks.h"
#include "host/server/AnswerQueue.h"
#include "host/server/StatusQueue.h"

namespace Norvik::Host {

namespace {

namespace fs = boost::filesystem;
using std::chrono::system_clock;

constexpr char OUTBOX_FOLDER[] = "outbox";
constexpr char MACHINE_DOCUMENT[] = ".jsonkob";
/// A server that is away for a night is no fault of this machine.
constexpr std::chrono::hours LONG_WAIT(24);

struct Waiting {
  std::size_t count = 0;
  std::uintmax_t bytes = 0;
  std::size_t machineDocuments = 0;
  system_clock::time_point oldest = system_clock::time_point::max();
};

/// The files of the outbox without those that are still being written.
Waiting FilesIn(const fs::path& folder) {
  Waiting waiting;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    const std::string name = entry.path().filename().string();
    boost::system::error_code gone;
    const auto bytes = fs::file_size(entry.path(), gone);
    const auto time = fs::last_write_time(entry.path(), gone);
    if (gone || name.front() == '.') continue;
    ++waiting.count;
    waiting.bytes += bytes;
    if (entry.path().extension() == MACHINE_DOCUMENT) ++waiting.machineDocuments;
    waiting.oldest = std::min(waiting.oldest, system_clock::from_time_t(time));
  }
  return waiting;
}

/// The address of the server; empty: none, or it is not known.
std::string ServerOf(const Examined& examined) {
  const auto& configuration = examined.Configuration().value;
  return configuration ? configuration->values.communications.address : std::string();
}

Outcome OutcomeOfWait(const Examined& examined, system_clock::time_point since) {
  if (ServerOf(examined).empty()) return Outcome::INFORMATION;
  return examined.Options().now - since > LONG_WAIT ? Outcome::WARNING : Outcome::OK;
}

std::string AgeText(const Examined& examined, system_clock::time_point since) {
  const auto age = examined.Options().now - since;
  return PeriodText(std::max(std::chrono::duration_cast<std::chrono::seconds>(age), {}));
}

}  // namespace

Finding FindOutbox(const Examined& examined) {
  const fs::path folder = examined.File(OUTBOX_FOLDER);
  const Presence presence = ReadablePresenceOf(folder);
  if (presence == Presence::HIDDEN) return UnreadableFinding(folder.string());
  if (presence == Presence::MISSING) return {Outcome::OK, "nothing was put into it yet"};
  const Waiting waiting = FilesIn(folder);
  if (waiting.count == 0) return {Outcome::OK, "nothing waits"};
  return {OutcomeOfWait(examined, waiting.oldest),
          std::to_string(waiting.count) + " files wait, " + SizeText(waiting.bytes) +
              ", the oldest for " + AgeText(examined, waiting.oldest)};
}

/// The last document leaves the outbox only when the server has it, also where no history is kept.
Finding FindLastDelivery(const Examined& examined) {
  if (!examined.Configuration().value) {
    return {Outcome::UNKNOWN, "the configuration cannot be used", "see the check configuration"};
  }
  if (ServerOf(examined).empty()) return {Outcome::OK, "not needed: no server is configured"};
  const fs::path folder = examined.File(OUTBOX_FOLDER);
  if (ReadablePresenceOf(folder) == Presence::HIDDEN) return UnreadableFinding(folder.string());
  const auto& data = examined.Database().data;
  const auto made = data.find(Common::LAST_DOCUMENT_KEY);
  if (made == data.end()) return {Outcome::UNKNOWN, "no document is known to have been made"};
  if (PresenceOf(folder) == Presence::THERE && FilesIn(folder).machineDocuments > 0) {
    return {Outcome::INFORMATION, "the last machine inventory is not sent yet"};
  }
  const auto time = system_clock::from_time_t(std::stoll(made->second));
  return {Outcome::OK, "the machine inventory that was made at " + TimeText(time) + " is sent"};
}

Finding FindWaitingStates(const Examined& examined) {
  const fs::path file = examined.File(STATUSES_FILE);
  const fs::path folder = examined.File(ANSWERS_FOLDER);
  for (const fs::path& place : {file, folder}) {
    if (ReadablePresenceOf(place) == Presence::HIDDEN) return UnreadableFinding(place.string());
  }
  std::string text;
  auto oldest = system_clock::time_point::max();
  const auto add = [&](std::size_t count, const char* what, std::time_t since) {
    const auto time = system_clock::from_time_t(since);
    oldest = std::min(oldest, time);
    text += (text.empty() ? "" : "; ") + std::to_string(count) + what + " wait, the oldest for " +
            AgeText(examined, time);
  };
  const StatusQueue queue(file, std::make_shared<Clock>());
  if (const std::size_t count = queue.First(StatusQueue::LIMIT).size(); count != 0) {
    const auto first = nlohmann::json::parse(queue.First(1).front().json);
    add(count, " states", first.value("time", std::time_t{0}));
  }
  const WaitingAnswers answers = AnswersIn(folder);
  if (!answers.empty()) add(answers.size(), " answers", answers.begin()->second.since);
  if (text.empty()) return {Outcome::OK, "none waits"};
  return {OutcomeOfWait(examined, oldest), text};
}

}  // namespace Norvik::Host
