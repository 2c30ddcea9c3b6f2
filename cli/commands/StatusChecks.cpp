#include "cli/commands/StatusChecks.h"

#include <algorithm>
#include <boost/algorithm/string/join.hpp>
#include <string>
#include <utility>

namespace Norvik::Cli {

namespace {

using std::chrono::seconds;
using std::chrono::system_clock;
using Time = system_clock::time_point;

constexpr unsigned int TASK_CODES[] = {1046, 32027};

std::int64_t SecondsOf(const OrderedJson& time) {
  return time.is_null() ? 0 : time["seconds"].get<std::int64_t>();
}

bool FetchesTasksDaily(const OrderedJson& status) {
  const auto& periodic = status["periodic"];
  return std::any_of(periodic.begin(), periodic.end(), [](const OrderedJson& entry) {
    const auto period = entry["periodSeconds"].get<std::int64_t>();
    const bool isForTasks =
        std::count(std::begin(TASK_CODES), std::end(TASK_CODES), entry.value("code", 0u)) > 0;
    return isForTasks && period > 0 && seconds(period) <= LONGEST_SILENCE;
  });
}

// Each check returns what to do something about; empty if there is nothing.

std::string CheckData(const OrderedJson& status, Time /*now*/) {
  return boost::algorithm::join(status["problems"].get<std::vector<std::string>>(), "; ");
}

std::string CheckKey(const OrderedJson& status, Time /*now*/) {
  const auto problem = status["deliveryProblem"].get<std::string>();
  return problem.empty() ? problem : "no document is delivered: " + problem;
}

std::string CheckRefusals(const OrderedJson& status, Time /*now*/) {
  std::string text;
  if (status["server"] == "") return text;
  for (const auto& [what, reason] : status["contact"]["refused"].items()) {
    text += (text.empty() ? "not accepted: " : "; ") + what + ": " + reason.get<std::string>();
  }
  return text;
}

std::string CheckContact(const OrderedJson& status, Time now) {
  const OrderedJson& contact = status["contact"];
  const auto last = SecondsOf(contact["last"]);
  // Before the first contact, since there has been something to make contact with.
  const auto since = last != 0 ? last : status["configuredAt"].get<std::int64_t>();
  const auto silence = seconds(system_clock::to_time_t(now) - since);
  if (status["server"] == "" || since == 0 || silence <= LONGEST_SILENCE) return "";
  const bool isExpected = FetchesTasksDaily(status) || SecondsOf(contact["failed"]) > last ||
                          status["waiting"]["documents"]["count"] != 0 ||
                          status["waiting"]["states"]["count"] != 0 ||
                          status["waiting"]["answers"]["count"] != 0;
  return isExpected ? "the server was not reached for " + PeriodText(silence) : "";
}

std::string CheckDisk(const OrderedJson& status, Time /*now*/) {
  const OrderedJson& disk = status["disk"];
  if (disk.is_null() || disk["freeBytes"].get<std::uintmax_t>() >= LEAST_FREE_BYTES) return "";
  return "the disk of the data folder is nearly full: " + SizeText(disk["freeBytes"]) + " of " +
         SizeText(disk["bytes"]) + " are free";
}

}  // namespace

OrderedJson AttentionOf(const OrderedJson& status, Time now) {
  using Check = std::string (*)(const OrderedJson&, Time);
  static constexpr std::pair<const char*, Check> CHECKS[] = {{"data", CheckData},
                                                             {"server-key", CheckKey},
                                                             {"refused", CheckRefusals},
                                                             {"contact", CheckContact},
                                                             {"disk", CheckDisk}};
  OrderedJson list = OrderedJson::array();
  for (const auto& [name, check] : CHECKS) {
    const std::string text = check(status, now);
    if (!text.empty()) list.push_back({{"check", name}, {"text", text}});
  }
  return list;
}

}  // namespace Norvik::Cli
