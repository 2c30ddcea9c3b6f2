#include "cli/commands/ServerStatus.h"

#include <algorithm>

#include "common/text/Text.h"
#include "host/data/DataFolder.h"
#include "host/server/AnswerQueue.h"
#include "host/server/ServerContact.h"
#include "host/server/ServerOptions.h"
#include "host/server/StatusQueue.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

using namespace Common;
using std::chrono::seconds;
using std::chrono::system_clock;

OrderedJson TimeOrNull(const ContactState::Time& time) {
  return time ? TimeToJson(*time) : OrderedJson();
}

OrderedJson Nothing() { return {{"count", 0}, {"bytes", 0}, {"oldest", nullptr}}; }

/// Counts one more item that waits.
void Add(OrderedJson& sum, std::uintmax_t bytes, std::int64_t since) {
  sum["count"] = sum["count"].get<std::size_t>() + 1;
  sum["bytes"] = sum["bytes"].get<std::uintmax_t>() + bytes;
  const bool isOldest = sum["oldest"].is_null() || since < sum["oldest"]["seconds"];
  if (isOldest) sum["oldest"] = TimeToJson(system_clock::time_point(seconds(since)));
}

std::string WaitingLine(const std::string& name, const OrderedJson& sum,
                        system_clock::time_point now) {
  std::string text = "waiting " + name + ": " + sum["count"].dump();
  if (sum["count"] == 0) return text + "\n";
  return text + ", " + SizeText(sum["bytes"]) + ", the oldest of " + AgeText(sum["oldest"], now) +
         "\n";
}

}  // namespace

OrderedJson TimeToJson(system_clock::time_point time) {
  return {{"seconds", system_clock::to_time_t(time)}, {"time", TimeText(time)}};
}

std::string AgeText(const OrderedJson& time, system_clock::time_point now) {
  if (time.is_null()) return "never";
  const auto age = seconds(system_clock::to_time_t(now) - time["seconds"].get<std::int64_t>());
  const std::string text = age < seconds(0) ? "in " + PeriodText(-age) : PeriodText(age) + " ago";
  return time["time"].get<std::string>() + " (" + text + ")";
}

OrderedJson ServerState(const CommunicationsInfo& server, const boost::optional<Identity>& identity,
                        const std::string& contact) {
  ServerOptions options = ServerOptionsOf(server);
  const ContactState state = ParseContactState(contact).get_value_or({});
  const bool isEnrolled =
      identity && !server.address.empty() && identity->server == options.Origin();
  return {{"server", server.address},
          {"port", options.port},
          {"enrolled", isEnrolled},
          {"contact",
           {{"last", TimeOrNull(state.contact)},
            {"failed", TimeOrNull(state.failed)},
            {"error", state.error},
            {"nextTry", TimeOrNull(state.nextTry)},
            {"refused", OrderedJson(state.refused)}}}};
}

OrderedJson WaitingDocuments(const OrderedJson& outbox) {
  OrderedJson documents = Nothing();
  for (const auto& file : outbox) Add(documents, file["bytes"], file["seconds"]);
  return documents;
}

OrderedJson WaitingStates(const boost::filesystem::path& dataFolder) {
  OrderedJson states = Nothing();
  const StatusQueue queue(dataFolder / STATUSES_FILE, std::make_shared<Clock>());
  for (const auto& waiting : queue.First(StatusQueue::LIMIT)) {
    const auto json = OrderedJson::parse(waiting.json);
    Add(states, waiting.json.size(), json.value("time", std::int64_t{0}));
  }
  return states;
}

OrderedJson WaitingAnswers(const boost::filesystem::path& dataFolder) {
  OrderedJson answers = Nothing();
  for (const auto& [number, waiting] : AnswersIn(dataFolder / ANSWERS_FOLDER)) {
    Add(answers, waiting.bytes, waiting.since);
  }
  return answers;
}

std::string ServerLines(const OrderedJson& status, system_clock::time_point now) {
  const std::string address = status["server"].get<std::string>();
  std::string text = "server: none\n";
  if (!address.empty()) {
    const OrderedJson& contact = status["contact"];
    text = "server: " + EscapeControls(address) + ", port " + status["port"].dump() +
           (status["enrolled"].get<bool>() ? ", enrolled\n" : ", not enrolled\n");
    text += "last contact: " + AgeText(contact["last"], now) + "\n";
    if (!contact["failed"].is_null()) {
      text += "last error: " + AgeText(contact["failed"], now) + ": " +
              EscapeControls(contact["error"].get<std::string>()) + "\n";
    }
    // A past one is that of an agent that no longer runs.
    const OrderedJson& next = contact["nextTry"];
    if (!next.is_null() && next["seconds"] >= system_clock::to_time_t(now)) {
      text += "next try: " + AgeText(next, now) + "\n";
    }
  }
  return text + WaitingLine("documents", status["waiting"]["documents"], now) +
         WaitingLine("states of tasks", status["waiting"]["states"], now) +
         WaitingLine("answers of tasks", status["waiting"]["answers"], now);
}

}  // namespace Norvik::Cli
