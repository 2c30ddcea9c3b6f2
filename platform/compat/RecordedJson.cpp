#include "platform/compat/RecordedJson.h"

#include "platform/compat/PropertyListReader.h"
#include "platform/compat/Recording.h"

namespace Norvik::Platform {

using nlohmann::json;

json RecordedJson(const std::string& file) {
  const std::string path = RecordingFile(file);
  if (path.empty()) return {};
  return json::parse(ReadFileBytes(path), nullptr, /*allow_exceptions=*/false);
}

const json& MemberOf(const json& object, const char* key) {
  static const json none;
  if (!object.is_object()) return none;
  const auto found = object.find(key);
  return found == object.end() ? none : *found;
}

std::string TextAt(const json& object, const char* key) {
  const json& value = MemberOf(object, key);
  return value.is_string() ? value.get<std::string>() : std::string();
}

double NumberAt(const json& object, const char* key) {
  const json& value = MemberOf(object, key);
  return value.is_number() ? value.get<double>() : 0.0;
}

std::uint64_t WholeNumberAt(const json& object, const char* key) {
  const json& value = MemberOf(object, key);
  return value.is_number_unsigned() ? value.get<std::uint64_t>() : 0;
}

}  // namespace Norvik::Platform
