#pragma once

#include <string>
#include <utility>
#include <vector>

namespace Norvik::Tests {

// Property lists as the tools of macOS print them.

inline std::string Text(const std::string& text) { return "<string>" + text + "</string>\n"; }

inline std::string Array(const std::vector<std::string>& values) {
  std::string text = "<array>\n";
  for (const auto& value : values) text += value;
  return text + "</array>\n";
}

inline std::string Dictionary(const std::vector<std::pair<std::string, std::string>>& entries) {
  std::string text = "<dict>\n";
  for (const auto& [key, value] : entries) text += "\t<key>" + key + "</key>\n\t" + value;
  return text + "</dict>\n";
}

inline std::string PropertyList(const std::string& value) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST "
         "1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n<plist "
         "version=\"1.0\">\n" +
         value + "</plist>\n";
}

/// A report of one type of data, as systems of 2011 and later print it.
inline std::string Report(const std::string& type, const std::vector<std::string>& items) {
  const auto words = Array({Text("/usr/sbin/system_profiler"), Text("-xml"), Text(type)});
  return PropertyList(Array({Dictionary({{"_SPCommandLineArguments", words},
                                         {"_SPCompletionInterval", "<real>0.25</real>\n"},
                                         {"_dataType", Text(type)},
                                         {"_items", Array(items)},
                                         {"_timeStamp", "<date>2024-05-06T07:08:09Z</date>\n"}})}));
}

}  // namespace Norvik::Tests
