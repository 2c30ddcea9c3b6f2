#pragma once

#include <boost/filesystem/path.hpp>
#include <boost/optional.hpp>
#include <string>
#include <vector>

namespace Norvik::Host {

/// A key file, by its name `*.pub` or `*.key`.
struct ListedKey {
  boost::filesystem::path file;
  bool isPrivate = false;
  std::string fingerprint;
  /// Whether the other half of the same name belongs to it; none if there is no such file.
  boost::optional<bool> fits;
  std::vector<std::string> warnings;  ///< who else may use or replace it
};

struct KeyListing {
  std::vector<ListedKey> keys;
  std::vector<std::string> problems;  ///< why other key files cannot be used; one line each
};

bool IsKeyFile(const boost::filesystem::path& file);
/// Throws `std::runtime_error` if it is no usable key.
ListedKey KeyIn(const boost::filesystem::path& file);
/// The key files of a folder in the order of their names. Throws if it cannot be read.
KeyListing KeysIn(const boost::filesystem::path& folder);

}  // namespace Norvik::Host
