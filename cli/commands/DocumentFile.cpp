#include "cli/commands/DocumentFile.h"

#include <stdlib.h>

#include <boost/algorithm/string/predicate.hpp>
#include <boost/filesystem/operations.hpp>
#include <stdexcept>

#include "common/files/Archive.h"
#include "common/files/FileSealer.h"
#include "common/files/TextFile.h"

namespace Norvik::Cli {

namespace {

using Common::ReadTextFile;
namespace fs = boost::filesystem;

constexpr std::size_t MAX_DOCUMENT_BYTES = std::size_t{1} << 30;

/// A folder that only this user can enter, removed with its content.
class PrivateFolder {
 public:
  PrivateFolder() {
    std::string pattern = (fs::temp_directory_path() / "norvik-open-XXXXXX").string();
    if (!::mkdtemp(pattern.data())) throw std::runtime_error("cannot make " + pattern);
    path_ = pattern;
  }
  PrivateFolder(const PrivateFolder&) = delete;
  PrivateFolder& operator=(const PrivateFolder&) = delete;
  ~PrivateFolder() {
    boost::system::error_code ignored;
    fs::remove_all(path_, ignored);
  }
  const fs::path& Path() const { return path_; }

 private:
  fs::path path_;
};

}  // namespace

std::string ReadSealedDocument(const fs::path& file, const fs::path& keys) {
  if (!fs::is_regular_file(file)) {
    throw std::runtime_error("cannot open " + file.string() +
                             (fs::exists(file) ? ": it is no plain file" : ": it does not exist"));
  }
  const PrivateFolder folder;
  const fs::path archive = folder.Path() / "document.zip";
  try {
    // The library does not follow links, but a user may name one.
    Common::FileSealer(keys).Open(fs::is_symlink(file) ? fs::canonical(file) : file, archive);
    return Common::ReadArchive(archive);
  } catch (const std::exception& error) {
    throw std::runtime_error("cannot open " + file.string() + ": " + error.what());
  }
}

std::string ReadDocument(const fs::path& file, const fs::path& keys) {
  // A pipe can be read only once, so it is not tested.
  if (fs::is_regular_file(file) && Common::IsSealedFile(file))
    return ReadSealedDocument(file, keys);
  return ReadTextFile(file, MAX_DOCUMENT_BYTES);
}

}  // namespace Norvik::Cli
