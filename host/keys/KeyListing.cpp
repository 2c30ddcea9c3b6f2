#include "host/keys/KeyListing.h"

#include <sys/stat.h>

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <cstdio>
#include <exception>

#include "common/files/KeyFile.h"
#include "host/HostError.h"

namespace Norvik::Host {

namespace {

namespace fs = boost::filesystem;

Common::KeyIdentifier IdentifierIn(const fs::path& file) {
  if (file.extension() == ".pub") {
    Common::PublicKey key;
    Common::ReadKeyFile(file, key);
    return Common::IdentifierOf(key);
  }
  Common::PrivateKey key;
  Common::ReadKeyFile(file, key.bytes);
  return Common::IdentifierOf(Common::PublicHalf(key));
}

/// Adds a warning if others than the owner have one of these permissions.
void WarnOfOthers(const fs::path& path, mode_t bits, const char* text,
                  std::vector<std::string>& warnings) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0 || (status.st_mode & bits) == 0) return;
  char mode[8];
  std::snprintf(mode, sizeof(mode), "%04o", static_cast<unsigned int>(status.st_mode & 07777));
  warnings.push_back(std::string(text) + ", mode " + mode);
}

}  // namespace

bool IsKeyFile(const fs::path& file) {
  return file.extension() == ".pub" || file.extension() == ".key";
}

ListedKey KeyIn(const fs::path& file) {
  Common::PrepareEncryption();
  ListedKey key;
  key.file = file;
  key.isPrivate = file.extension() == ".key";
  const Common::KeyIdentifier identifier = IdentifierIn(file);
  key.fingerprint = Common::FingerprintOf(identifier);
  fs::path other = file;
  other.replace_extension(key.isPrivate ? ".pub" : ".key");
  boost::system::error_code error;
  if (fs::exists(other, error)) {
    try {
      key.fits = IdentifierIn(other) == identifier;
    } catch (const std::exception&) {
      // It has a problem of its own.
    }
  }
  if (key.isPrivate) {
    WarnOfOthers(file, S_IRWXG | S_IRWXO, "others may use it", key.warnings);
    const fs::path folder = file.has_parent_path() ? file.parent_path() : fs::path(".");
    WarnOfOthers(folder, S_IWGRP | S_IWOTH, "others may replace files of its folder", key.warnings);
  }
  return key;
}

KeyListing KeysIn(const fs::path& folder) {
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(folder)) {
    const fs::path& file = entry.path();
    // A hidden one is being written.
    if (IsKeyFile(file) && file.filename().string().front() != '.') files.push_back(file);
  }
  std::sort(files.begin(), files.end());
  KeyListing listing;
  for (const fs::path& file : files) {
    try {
      listing.keys.push_back(KeyIn(file));
    } catch (const std::exception& error) {
      listing.problems.push_back(ReasonOf(error));
    }
  }
  return listing;
}

}  // namespace Norvik::Host
