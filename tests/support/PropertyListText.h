#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace Norvik::Tests {

/// A value of a property list as the tools of macOS print it. `{"$data": "AAEC"}` is an element of
/// that name. `{"$": "<x/>"}` is inserted unchanged; so are character references in texts.
inline std::string ListValue(const nlohmann::ordered_json& value) {
  const auto element = [](const std::string& name, const std::string& content) {
    return "<" + name + ">" + content + "</" + name + ">\n";
  };
  std::string content;
  if (value.is_string()) return element("string", value);
  if (value.is_boolean()) return value ? "<true/>\n" : "<false/>\n";
  if (value.is_number()) return element(value.is_number_float() ? "real" : "integer", value.dump());
  if (value.is_array()) {
    for (const auto& item : value) content += ListValue(item);
    return element("array", content);
  }
  for (const auto& [key, item] : value.items()) {
    if (key == "$") return item;
    if (key[0] == '$') return element(key.substr(1), item);
    content += "\t" + element("key", key) + "\t" + ListValue(item);
  }
  return element("dict", content);
}

/// A whole property list with this text as its value.
inline std::string PropertyList(const std::string& value) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST "
         "1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n<plist "
         "version=\"1.0\">\n" +
         value + "</plist>\n";
}

inline std::string PropertyListOf(const nlohmann::ordered_json& value) {
  return PropertyList(ListValue(value));
}
inline std::string PropertyListOf(const char* value) {
  return PropertyListOf(nlohmann::ordered_json::parse(value));
}

}  // namespace Norvik::Tests
