#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

namespace Norvik::Platform {

/// The content of a file of the recorded machine in force. No list and no object if none is in
/// force, or the file is missing or not JSON.
nlohmann::json RecordedJson(const std::string& file);

// Members of an object. Each is empty, zero or null if it is missing or has another type.

const nlohmann::json& MemberOf(const nlohmann::json& object, const char* key);
std::string TextAt(const nlohmann::json& object, const char* key);
double NumberAt(const nlohmann::json& object, const char* key);
std::uint64_t WholeNumberAt(const nlohmann::json& object, const char* key);

/// Calls `take` with each object of a list; not at all for other values.
template <class Take>
void ForEachObject(const nlohmann::json& list, Take take) {
  if (!list.is_array()) return;
  for (const nlohmann::json& item : list) {
    if (item.is_object()) take(item);
  }
}

}  // namespace Norvik::Platform
