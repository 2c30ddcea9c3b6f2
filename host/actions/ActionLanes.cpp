#include "host/actions/ActionLanes.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "common/action/ActionCodes.h"
#include "host/assembly/ModuleActionCodes.h"

namespace Norvik::Host {

namespace {

using namespace Common;

/// All other codes are work of the agent's own, which ends soon.
constexpr std::pair<unsigned int, Lane> LANE_OF_CODE[] = {
    {ACTION_INCREMENTAL_INVENTORY, Lane::Inventories},
    {ACTION_TOTAL_INVENTORY, Lane::Inventories},
    {ACTION_FILE_INVENTORY, Lane::Inventories},
    {ACTION_FILE_INVENTORY_INCREMENTAL, Lane::Inventories},
    {ACTION_FILE_INVENTORY_ON_DEMAND, Lane::Inventories},
    {ACTION_FILE_INVENTORY_INCREMENTAL_ON_DEMAND, Lane::Inventories},
    {ACTION_FILE_INVENTORY_INIT, Lane::Inventories},
    {ACTION_SHOW_MESSAGE, Lane::Users},
    {ACTION_VALIDATE_SURVEY_COMPLETION, Lane::Sessions},
};

constexpr const char* NAMES[LANES] = {"the agent's own actions", "inventories",
                                      "tasks of the server",     "messages of users",
                                      "sessions of users",       "commands of administrators"};

}  // namespace

unsigned int ActionCodeOf(const std::string& name) {
  const auto* const found =
      std::find_if(std::begin(ACTION_NAMES), std::end(ACTION_NAMES),
                   [&](const ActionName& action) { return action.name == name; });
  return found == std::end(ACTION_NAMES) ? 0 : found->code;
}

Lane LaneOf(unsigned int code) {
  const auto* const found = std::find_if(std::begin(LANE_OF_CODE), std::end(LANE_OF_CODE),
                                         [&](const auto& row) { return row.first == code; });
  return found == std::end(LANE_OF_CODE) ? Lane::Own : found->second;
}

const char* NameOf(Lane lane) { return NAMES[static_cast<std::size_t>(lane)]; }

}  // namespace Norvik::Host
