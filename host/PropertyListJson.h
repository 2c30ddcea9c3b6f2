#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace Norvik::Host {

/// Whether bytes begin as a property list, XML or binary.
bool IsPropertyList(const std::string& bytes);

/// A property list as JSON: dictionaries are objects, data are binary. A date or a number with a
/// fraction is null. Texts may be no UTF-8. Empty for bytes that are no property list.
std::optional<nlohmann::json> JsonOfPropertyList(const std::string& bytes);

}  // namespace Norvik::Host
