#include "host/configuration/ManagedPreferences.h"

#include <boost/filesystem/operations.hpp>
#include <iterator>
#include <stdexcept>

#include "common/files/TextFile.h"
#include "host/PropertyListJson.h"
#include "platform/MachinePath.h"

namespace Norvik::Host {

namespace {

using Json = nlohmann::json;
void LeaveOutProfileKeys(Json& values) {
  if (!values.is_object()) return;
  for (auto item = values.begin(); item != values.end();) {
    item = item.key().rfind("Payload", 0) == 0 ? values.erase(item) : std::next(item);
  }
}

}  // namespace

Json ReadManagedPreferences() {
  const std::string file = Platform::MachinePath(MANAGED_PREFERENCES);
  boost::system::error_code unknown;
  if (boost::filesystem::status(file, unknown).type() == boost::filesystem::file_not_found) {
    return Json::object();
  }
  std::string bytes;
  try {
    bytes = Common::ReadTextFile(file);
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(std::string("cannot read the managed preferences ") + error.what());
  }
  const auto list = JsonOfPropertyList(bytes);
  if (!list)
    throw std::runtime_error("managed preferences " + file + ": they are no property list");
  Json values = *list;
  LeaveOutProfileKeys(values);
  try {
    values.dump();
  } catch (const Json::type_error&) {
    throw std::runtime_error("managed preferences " + file + ": a text is not UTF-8");
  }
  return values;
}

std::string StateOfManagedPreferences() {
  try {
    return ReadManagedPreferences().dump();
  } catch (const std::runtime_error& error) {
    return error.what();
  }
}

}  // namespace Norvik::Host
