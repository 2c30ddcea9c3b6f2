// The smallest host that takes an inventory with the module:
//
//   minimal-host DATA_FOLDER [RECORDED_MACHINE]    takes one inventory and prints its document
//
// Read it from the bottom up, and then MinimalHost.h, which has the host's services.
#include <boost/filesystem/operations.hpp>
#include <boost/optional.hpp>
#include <iostream>

#include "MinimalHost.h"
#include "common/LibraryVersion.h"
#include "common/action/ActionCodes.h"
#include "common/files/Archive.h"
#include "common/files/FileSealer.h"
#include "common/files/Paths.h"
#include "platform/RecordedMachine.h"

namespace {

using namespace Norvik::Common;
namespace fs = boost::filesystem;

constexpr unsigned int TOTAL_INVENTORY = 1071;  // docs/embedding.md lists the codes

/// Prints the documents of the outbox, which were sealed with a key of this data folder.
void PrintDocuments(const fs::path& dataFolder) {
  const fs::path opened = dataFolder / "opened.zip";
  for (const auto& entry : fs::directory_iterator(Paths(Paths::OUTBOX, true).AppData())) {
    FileSealer(dataFolder / "keys").Open(entry.path(), opened);
    std::cout << ReadArchive(opened) << "\n";
    fs::remove(opened);
  }
}

void TakeInventory(const fs::path& dataFolder) {
  MinimalHost::Host host(dataFolder, MODULE_FILE);
  MinimalHost::Actions& actions = host.GetActions();
  actions.RunAction(host.Module().GetAction(COMMON_ACTION_INIT, {}));
  actions.RunAction(host.Module().GetAction(TOTAL_INVENTORY, {}));
  actions.RunWaiting();
  PrintDocuments(dataFolder);
}

}  // namespace

int main(int count, char** arguments) try {
  // Before anything else of the library.
  RequireLibraryVersion("minimal-host");
  if (count < 2 || count > 3) {
    throw std::runtime_error("usage: minimal-host DATA_FOLDER [RECORDED_MACHINE]");
  }
  boost::optional<Norvik::Platform::RecordedMachine> machine;
  if (count == 3) machine.emplace(arguments[2]);
  TakeInventory(fs::absolute(arguments[1]));
  return 0;
} catch (const std::exception& error) {
  std::cerr << "minimal-host: " << error.what() << "\n";
  return 1;
}
