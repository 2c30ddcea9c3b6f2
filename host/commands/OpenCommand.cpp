#include <stdlib.h>

#include <boost/filesystem/operations.hpp>
#include <nlohmann/json.hpp>
#include <ostream>
#include <stdexcept>

#include "common/files/FileSealer.h"
#include "host/AgentProgram.h"
#include "host/DataFolder.h"
#include "host/commands/Commands.h"
#include "host/commands/Rendering.h"

namespace Norvik::Host {

namespace {

namespace fs = boost::filesystem;

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

std::string ReadDocument(const fs::path& file, const fs::path& keys) {
  const PrivateFolder folder;
  const fs::path archive = folder.Path() / "document.zip";
  try {
    Common::FileSealer(keys).Open(file, archive);
    return Common::ReadArchive(archive);
  } catch (const std::exception& error) {
    throw std::runtime_error("cannot open " + file.string() + ": " + error.what());
  }
}

}  // namespace

int RunOpen(const CommandLine& line, std::ostream& output, std::ostream& /*errors*/) {
  // Only the answer is to be seen: nothing of the library's log.
  const LoggerScope silence(std::make_shared<ListeningLogger>(nullptr, LogListener()));
  std::string document = ReadDocument(line.file, line.agent.dataFolder / KEY_FOLDER);
  if (line.pretty) document = OrderedJson::parse(document).dump(2) + "\n";
  output << document;
  return EXIT_DONE;
}

}  // namespace Norvik::Host
