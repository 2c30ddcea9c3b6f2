#include "cli/commands/LiveDocument.h"

#include <boost/filesystem/operations.hpp>
#include <ctime>
#include <exception>
#include <ostream>
#include <stdexcept>

#include "cli/commands/DocumentFile.h"
#include "cli/commands/InventoryRecorder.h"
#include "cli/commands/PrivateFolder.h"
#include "cli/commands/Rendering.h"
#include "common/database/AgentDatabase.h"
#include "host/HostError.h"
#include "host/assembly/ModuleActionCodes.h"
#include "host/recording/RemovalOnDeath.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

namespace fs = boost::filesystem;
using Common::ProgressListenerScope;

/// A damaged database is left out: users' network drives are then missing in the document.
void CopyDatabaseOf(const fs::path& data, const fs::path& copy, const CommandLine& line,
                    std::ostream& errors) {
  const fs::path name = Common::SQLiteNames::SQLITE_CURRENT_DATABASE_NAME;
  if (!fs::exists(data / name)) return;
  try {
    Common::CopyDatabase(data / name, copy / name);
  } catch (const std::exception& error) {
    boost::system::error_code ignored;
    fs::remove(copy / name, ignored);
    errors << MessageLine(line.json, std::string("the document has no network drives of users: ") +
                                         ReasonOf(error))
           << std::flush;
  }
}

AgentOptions OptionsFor(const fs::path& folder, const CommandLine& line) {
  const fs::path data = line.agent.dataFolder;
  AgentOptions options = line.agent;
  if (options.configurationFile.empty() && fs::exists(data / CONFIGURATION_FILE)) {
    options.configurationFile = data / CONFIGURATION_FILE;
  }
  if (fs::exists(data / IDENTITY_FILE)) {
    fs::copy_file(data / IDENTITY_FILE, folder / IDENTITY_FILE);
  }
  options.dataFolder = folder;
  options.userProcess = false;
  options.newConfiguration = EffectiveConfiguration();  // without a server
  return options;
}

}  // namespace

fs::path LastDocumentIn(const fs::path& folder) {
  fs::path last;
  std::time_t lastTime = 0;
  if (!fs::exists(folder)) return last;
  for (const auto& entry : fs::directory_iterator(folder)) {
    const fs::path& file = entry.path();
    if (file.extension() != ".jsonkob" || !fs::is_regular_file(entry.symlink_status())) continue;
    boost::system::error_code gone;
    const std::time_t time = fs::last_write_time(file, gone);
    if (gone || file.filename().string().front() == '.') continue;
    if (!last.empty() && time <= lastTime) continue;
    last = file;
    lastTime = time;
  }
  return last;
}

std::string TakeLiveDocument(const CommandLine& line, std::ostream& errors) {
  const PrivateFolder folder;
  const RemovalOnDeath removal(folder.Path());
  CopyDatabaseOf(line.agent.dataFolder, folder.Path(), line, errors);
  const auto recorder = std::make_shared<InventoryRecorder>([](const RetrievedSections&) {});
  const ProgressListenerScope listening(recorder);
  AgentOptions options = OptionsFor(folder.Path(), line);
  options.logListener = [&](const LogLine& logged) { recorder->See(logged); };
  {
    AgentHost host(options);
    host.Run(ACTION_TOTAL_INVENTORY, {});
  }
  for (const auto& problem : recorder->Result().problems) {
    errors << MessageLine(line.json, problem) << std::flush;
  }
  const fs::path file = LastDocumentIn(folder.Path() / "previous");
  if (file.empty()) throw std::runtime_error("the inventory has made no document");
  return ReadDocument(file, line);
}

}  // namespace Norvik::Cli
