#include <boost/filesystem/operations.hpp>
#include <map>
#include <ostream>

#include "cli/commands/Commands.h"
#include "cli/commands/PrivateFolder.h"
#include "cli/commands/Rendering.h"
#include "common/action/ActionCodes.h"
#include "host/data/DataFolder.h"

namespace Norvik::Cli {

using namespace Host;

int RunActions(const CommandLine& line, std::ostream& output, std::ostream& /*errors*/) {
  const PrivateFolder folder;
  AgentOptions options = line.agent;
  if (const auto stored = options.dataFolder / CONFIGURATION_FILE;
      options.configurationFile.empty() && boost::filesystem::exists(stored)) {
    options.configurationFile = stored;
  }
  // The actions do not depend on the agent's data, and listing them makes none.
  options.dataFolder = folder.Path();
  options.exclusive = false;
  AgentHost host(options);

  std::map<unsigned int, std::string> registered;
  for (const Common::ActionName& action : Common::ACTION_NAMES) {
    if (host.Module().GetAction(action.code, {}).name.empty()) continue;
    registered.emplace(action.code, action.name);
  }

  OrderedJson list = OrderedJson::array();
  std::vector<std::vector<OrderedJson>> rows;
  for (const auto& [code, name] : registered) {
    list.push_back({{"code", code}, {"name", name}});
    rows.push_back({code, name});
  }
  output << (line.json ? JsonLine(list) : TableText(rows));
  return EXIT_DONE;
}

}  // namespace Norvik::Cli
