#include <map>
#include <ostream>

#include "cli/commands/Commands.h"
#include "cli/commands/Rendering.h"
#include "common/action/ActionCodes.h"

namespace Norvik::Cli {

using namespace Host;

int RunActions(const CommandLine& line, std::ostream& output, std::ostream& /*errors*/) {
  AgentOptions options = line.agent;
  options.exclusive = false;  // runs no action
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
