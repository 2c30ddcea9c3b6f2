#include "common/database/AgentData.h"

#include <boost/format.hpp>
#include <utility>

#include "common/database/KeyValueTable.h"
#include "common/log/Logger.h"

namespace Norvik::Common {
namespace {

using std::chrono::duration_cast;
using std::chrono::seconds;
using std::chrono::system_clock;

/// Runs a change of the table. False if the database is gone, or the change fails, which is logged.
template <class Change>
bool Try(const std::weak_ptr<IDataBase>& owner, const std::string& key, Change change) {
  const auto dataBase = owner.lock();
  if (!dataBase) return false;
  try {
    change();
    return true;
  } catch (const std::exception& error) {
    NORVIK_ERROR(boost::format("Unable to write %1%: %2%") % key % error.what());
    return false;
  }
}

}  // namespace

AgentData::AgentData(std::weak_ptr<IDataBase> dataBase, const std::string& table)
    : dataBase_(std::move(dataBase)), table_(table) {}

boost::optional<std::string> AgentData::GetOptionalString(const std::string& name) const {
  const auto dataBase = dataBase_.lock();
  if (!dataBase) return boost::none;
  return ReadKey(table_, name);
}

bool AgentData::SetString(const std::string& name, const std::string& value) {
  return Try(dataBase_, name, [&] { WriteKey(table_, name, value); });
}

std::unique_ptr<std::int64_t> AgentData::GetInt64(const std::string& name) const {
  const auto text = GetOptionalString(name);
  if (!text) return nullptr;
  const auto value = ParseInteger<std::int64_t>(*text);
  return value ? std::make_unique<std::int64_t>(*value) : nullptr;
}

bool AgentData::SetInt64(const std::string& name, std::int64_t value) {
  return SetString(name, std::to_string(value));
}

std::unique_ptr<system_clock::time_point> AgentData::GetDateTime(const std::string& name) const {
  const auto value = GetInt64(name);
  constexpr auto LATEST = duration_cast<seconds>(system_clock::duration::max()).count();
  if (!value || *value > LATEST || *value < -LATEST) return nullptr;
  return std::make_unique<system_clock::time_point>(seconds(*value));
}

bool AgentData::SetDateTime(const std::string& name, const system_clock::time_point& value) {
  return SetInt64(name, duration_cast<seconds>(value.time_since_epoch()).count());
}

std::vector<std::string> AgentData::NamesFrom(const std::string& prefix) const {
  const auto dataBase = dataBase_.lock();
  if (!dataBase) return {};
  return ReadKeysFrom(table_, prefix);
}

bool AgentData::Remove(const std::string& name) {
  return Try(dataBase_, name, [&] { RemoveKey(table_, name); });
}

}  // namespace Norvik::Common
