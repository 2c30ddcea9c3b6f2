#include "common/files/OpeningKeys.h"

#include <algorithm>
#include <boost/algorithm/string/join.hpp>
#include <boost/filesystem/operations.hpp>

namespace Norvik::Common {

namespace fs = boost::filesystem;

OpeningKeys::OpeningKeys(const std::vector<fs::path>& places) {
  PrepareEncryption();
  for (const fs::path& place : places) {
    boost::system::error_code error;
    if (fs::is_directory(place, error)) {
      AddFolder(place);
    } else {
      AddFile(place);
    }
  }
}

void OpeningKeys::AddFolder(const fs::path& folder) {
  boost::system::error_code error;
  std::vector<fs::path> files;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    const fs::path& file = entry->path();
    // A hidden one is being written.
    if (file.extension() == ".key" && file.filename().string().front() != '.') {
      files.push_back(file);
    }
  }
  if (error) {
    problems_.push_back(folder.string() + ": " + error.message());
  } else if (files.empty()) {
    problems_.push_back("there is no private key (*.key) in " + folder.string());
  }
  std::sort(files.begin(), files.end());
  for (const fs::path& file : files) AddFile(file);
}

void OpeningKeys::AddFile(const fs::path& file) {
  keys_.emplace_back();
  OpeningKey& key = keys_.back();
  try {
    key.file = file;
    ReadKeyFile(file, key.privateKey.bytes);
    key.publicKey = PublicHalf(key.privateKey);
    key.identifier = IdentifierOf(key.publicKey);
  } catch (const std::exception& error) {
    keys_.pop_back();
    problems_.emplace_back(error.what());
  }
}

std::string OpeningKeys::Tried() const {
  std::vector<std::string> tried;
  for (const OpeningKey& key : keys_) {
    tried.push_back(FingerprintOf(key.identifier) + " (" + key.file.string() + ")");
  }
  std::string problems = boost::join(problems_, "; ");
  if (tried.empty()) return problems;
  return "tried: " + boost::join(tried, ", ") + (problems.empty() ? "" : "; " + problems);
}

}  // namespace Norvik::Common
