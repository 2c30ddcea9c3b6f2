#include "cli/commands/DocumentFile.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/filesystem/operations.hpp>
#include <stdexcept>
#include <vector>

#include "cli/commands/PrivateFolder.h"
#include "common/files/Archive.h"
#include "common/files/FileSealer.h"
#include "common/files/TextFile.h"
#include "host/HostError.h"
#include "host/data/DataFolder.h"

namespace Norvik::Cli {

namespace {

using Common::ReadTextFile;
using Host::KEY_FOLDER;
namespace fs = boost::filesystem;

constexpr std::size_t MAX_DOCUMENT_BYTES = std::size_t{1} << 30;

/// Throws `std::runtime_error` that says which key the file needs and which were tried.
void Unseal(const fs::path& file, const std::vector<fs::path>& keyPlaces, const fs::path& target) {
  const std::string failure = "cannot open " + file.string() + ": ";
  try {
    Common::OpenSealedFile(file, target, Common::OpeningKeys(keyPlaces));
  } catch (const Common::WrongKeyError& error) {
    throw std::runtime_error(failure + error.what() +
                             "; --keys names a folder or a file with the private key");
  } catch (const std::exception& error) {
    throw std::runtime_error(failure + error.what());
  }
}

}  // namespace

std::vector<fs::path> KeyPlaces(const fs::path& file, const CommandLine& line) {
  if (!line.keyFolder.empty()) return {line.keyFolder};
  const fs::path usual = line.agent.dataFolder / KEY_FOLDER;
  const fs::path beside = fs::absolute(file).parent_path().parent_path() / KEY_FOLDER;
  if (line.dataFolderGiven || beside == usual || !fs::is_directory(beside)) return {usual};
  return {beside, usual};
}

bool IsSealed(const fs::path& file) {
  // A pipe can be read only once, so it is not tested.
  return fs::is_regular_file(file) && Common::IsSealedFile(file);
}

std::string ReadDocument(const fs::path& file, const CommandLine& line) {
  if (!IsSealed(file)) return ReadTextFile(file, MAX_DOCUMENT_BYTES);
  const PrivateFolder folder;
  const fs::path archive = folder.Path() / "document.zip";
  // The library does not follow links, but a user may name one.
  Unseal(fs::is_symlink(file) ? fs::canonical(file) : file, KeyPlaces(file, line), archive);
  try {
    return Common::ReadArchive(archive);
  } catch (const std::exception& error) {
    throw std::runtime_error("cannot open " + file.string() + ": " + error.what());
  }
}

void CheckOutput(const char* option, const fs::path& file) {
  const auto type = fs::symlink_status(file).type();
  if (type == fs::regular_file || type == fs::file_not_found) return;
  throw Host::UsageError(std::string(option) + " wants a new or a plain file, not " +
                         file.string());
}

}  // namespace Norvik::Cli
