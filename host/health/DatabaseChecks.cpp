#include <boost/algorithm/string/predicate.hpp>

#include "common/action/ActionCodes.h"
#include "common/action/InventorySchedules.h"
#include "host/actions/PeriodicState.h"
#include "host/health/Checks.h"

namespace Norvik::Host {

namespace {

using State = Common::DatabaseExamination::State;
using std::chrono::system_clock;

/// A schedule that is this late has failed, rather than waits for the machine to wake up.
constexpr std::chrono::hours OVERDUE(1);
/// Without a schedule, a document of this age is no longer one of the machine.
constexpr std::chrono::hours OLD(24 * 30);

boost::optional<Finding> NoDatabase(const Examined& examined) {
  const auto& database = examined.Database();
  if (database.state == State::MISSING) {
    return Finding{Outcome::UNKNOWN, "there is no database", START_AGENT};
  }
  if (database.state == State::DAMAGED) {
    return Finding{Outcome::UNKNOWN, "the database is damaged", "see the check database"};
  }
  if (database.schemaVersion >= 0) return boost::none;
  return Finding{Outcome::UNKNOWN, "the database cannot be read: " + database.problem,
                 "see the check database"};
}

std::chrono::seconds InventoryPeriod(const Examined& examined) {
  const auto& configuration = examined.Configuration().value;
  if (!configuration || !configuration->values.kob->inventorySchedule) return {};
  return std::chrono::seconds(configuration->values.kob->inventorySchedule->periodSeconds);
}

std::string AgeText(system_clock::duration age) {
  return PeriodText(std::chrono::duration_cast<std::chrono::seconds>(age));
}

std::string NameOfKey(const std::string& key) {
  const std::string code = key.substr(key.find('_') + 1);
  for (const Common::ActionName& action : Common::ACTION_NAMES) {
    if (std::to_string(action.code) == code) return action.name;
  }
  return key;
}

}  // namespace

Finding FindDatabase(const Examined& examined) {
  const auto& database = examined.Database();
  switch (database.state) {
    case State::MISSING:
      return {Outcome::INFORMATION, "there is no database yet", START_AGENT};
    case State::UNREADABLE:
      return {Outcome::UNKNOWN, "it cannot be read: " + database.problem,
              "run the check as root, when no other program holds the database"};
    case State::DAMAGED:
      return {Outcome::ERROR, "it is damaged: " + database.problem};
    case State::UNFINISHED:
      return {Outcome::UNKNOWN,
              "it is too large to be checked whole in " + std::to_string(Examined::LIMIT.count()) +
                  " ms; nothing was wrong so far",
              "run norvik-agent status, which checks it whole"};
    case State::SOUND:
      break;
  }
  return {Outcome::OK, "it is sound"};
}

Finding FindDatabaseSchema(const Examined& examined) {
  if (auto none = NoDatabase(examined)) return *none;
  const auto& database = examined.Database();
  const std::string text = "its schema has version " + std::to_string(database.schemaVersion) +
                           ", the newest is " + std::to_string(database.newestVersion);
  if (database.schemaVersion > database.newestVersion) return {Outcome::ERROR, text};
  if (database.schemaVersion == database.newestVersion) return {Outcome::OK, text};
  return {Outcome::INFORMATION, text + "; the next start upgrades it"};
}

Finding FindLastDocument(const Examined& examined) {
  if (auto none = NoDatabase(examined)) return *none;
  const auto& data = examined.Database().data;
  const auto found = data.find(Common::LAST_DOCUMENT_KEY);
  const auto state = found == data.end() ? boost::none : ParsePeriodicState("0 " + found->second);
  if (!state || state->next == system_clock::time_point()) {
    return {Outcome::WARNING, "no machine inventory has made a document yet"};
  }
  const auto age = examined.Options().now - state->next;
  const std::string text = "made at " + TimeText(state->next);
  if (age < std::chrono::minutes(-1)) {
    return {Outcome::WARNING, text + ", which is in the future",
            "correct the clock of the machine"};
  }
  const auto period = InventoryPeriod(examined);
  const std::string old = text + ", " + AgeText(age) + " ago";
  if (period > std::chrono::seconds(0) && age > 2 * period) {
    return {Outcome::WARNING, old + ", where one is due every " + PeriodText(period)};
  }
  return {age > OLD ? Outcome::INFORMATION : Outcome::OK, old};
}

Finding FindDueActions(const Examined& examined) {
  if (auto none = NoDatabase(examined)) return *none;
  std::string late;
  std::size_t count = 0;
  for (const auto& [key, text] : examined.Database().data) {
    if (!boost::starts_with(key, PERIODIC_KEY_PREFIX)) continue;
    const auto state = ParsePeriodicState(text);
    if (!state) continue;
    ++count;
    const auto delay = examined.Options().now - state->Due();
    if (delay < OVERDUE) continue;
    late += (late.empty() ? "" : ", ") + NameOfKey(key) + " since " + AgeText(delay);
  }
  if (late.empty()) return {Outcome::OK, std::to_string(count) + " actions wait for their time"};
  return {Outcome::WARNING, "overdue: " + late};
}

}  // namespace Norvik::Host
