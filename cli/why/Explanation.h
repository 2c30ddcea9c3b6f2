#pragma once

#include <string>
#include <vector>

namespace Norvik::Cli {

/// Something that a collector asks.
struct AskedSource {
  std::string kind;  ///< "tool", "file", "call", "registry", "smbios" or "location"
  std::string name;  ///< of a tool or call, the path of a file, the class in the I/O registry
};

/// What docs/sections.json and the schema say of a section or of a property in it.
struct Explanation {
  std::string key;      ///< "displays" or "displays.serial"
  std::string section;  ///< "displays"
  std::string description;
  std::string source;
  std::string filled;  ///< "measured", "constant" or "never"; "measured" where only the schema's
                       ///< system, macOS, never fills it
  std::string needs;   ///< "root", "Location" or empty
  std::vector<AskedSource> asked;
  std::string emptyOrOdd;          ///< of the section, on macOS
  std::vector<std::string> notes;  ///< of the key, on macOS
};

/// The keys of all sections, sorted.
std::vector<std::string> SectionKeys();
/// All names that the data explain: sections, and properties as "displays.serial".
std::vector<std::string> NotedKeys();
/// @param key  a section, or a property by its path: "disk.partition.bootable"
/// @param ofMac for a Mac, real or recorded
/// Throws `UsageError` for a key that the schema does not have.
Explanation ExplainKey(const std::string& key, bool ofMac);

}  // namespace Norvik::Cli
