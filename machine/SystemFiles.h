#pragma once

#include <boost/filesystem/path.hpp>
#include <cstdint>
#include <string>
#include <vector>

namespace Norvik::Machine {

/// The small files in which a system describes itself. Paths are absolute and are looked up below
/// the root. A result is empty or 0 if the file is missing or cannot be read; nothing throws.
class SystemFiles {
 public:
  /// The root is by default that of this machine, or of the recorded one that is in force.
  explicit SystemFiles(boost::filesystem::path root = {});

  /// The content of a file of up to 1 MiB; empty for a larger one.
  std::string Bytes(const std::string& path) const;
  /// The content in UTF-8, without blanks at both ends.
  std::string Text(const std::string& path) const;
  /// The decimal number at the beginning of the file.
  std::uint64_t Number(const std::string& path) const;
  bool Exists(const std::string& path) const;
  /// The names in a folder, sorted.
  std::vector<std::string> Names(const std::string& folder) const;
  /// The target of a symbolic link as the link states it; empty if the path is not a link.
  std::string LinkText(const std::string& path) const;
  /// The path with all links resolved, including the root.
  std::string Resolved(const std::string& path) const;

 private:
  boost::filesystem::path At(const std::string& path) const;

  const boost::filesystem::path root_;  ///< empty: that of the machine
};

/// The zone of the local time, such as "Europe/Oslo"; empty if the system does not report it.
std::string TimeZoneOf(const SystemFiles& files);

}  // namespace Norvik::Machine
