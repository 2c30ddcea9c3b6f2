#pragma once

#include <boost/filesystem/path.hpp>
#include <cstdint>
#include <string>
#include <vector>

namespace Norvik::Machine {

/// The small files in which a system tells of itself, below a root that is "/" for the machine's
/// own. Whatever is missing or unreadable is empty or 0.
class SystemFiles {
 public:
  explicit SystemFiles(boost::filesystem::path root = "/");

  /// The whole file as it is, up to 1 MiB.
  std::string Bytes(const std::string& path) const;
  /// The same without the blanks at both ends, in UTF-8.
  std::string Text(const std::string& path) const;
  /// The decimal number at the beginning of the file.
  std::uint64_t Number(const std::string& path) const;
  bool Exists(const std::string& path) const;
  /// Names in a folder, sorted.
  std::vector<std::string> Names(const std::string& folder) const;
  /// Where a link leads, as it stands in the link; empty for what is no link.
  std::string LinkText(const std::string& path) const;
  /// The path with every link followed, below the root.
  std::string Resolved(const std::string& path) const;

 private:
  boost::filesystem::path At(const std::string& path) const;

  const boost::filesystem::path root_;
};

/// The zone of local time, as in "Europe/Oslo"; empty if the system does not tell.
std::string TimeZoneOf(const SystemFiles& files);

}  // namespace Norvik::Machine
