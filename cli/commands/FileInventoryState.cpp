#include "cli/commands/FileInventoryState.h"

#include <vector>

#include "common/database/DataBase.h"
#include "common/inventory/RudStatus.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

using Common::V2::DataBase;
using std::chrono::system_clock;

constexpr char STATUS_TABLE[] = "RUD2_CURRENT_STATUS";

/// Null for 0: no run has written this time yet.
OrderedJson TimeOf(int seconds) {
  if (seconds == 0) return nullptr;
  return {{"seconds", seconds}, {"time", TimeText(system_clock::from_time_t(seconds))}};
}

}  // namespace

OrderedJson ReadFileInventoryState() {
  if (!DataBase::ExistTable(STATUS_TABLE)) return nullptr;
  DataBase dataBase;
  const auto numbers = [&](const std::string& sentence) {
    std::vector<int> cells;
    for (const auto& row : dataBase.ExecuteSentence(sentence)) {
      for (const auto& cell : row) cells.push_back(boost::get<int>(cell));
    }
    return cells;
  };
  const auto run =
      numbers(std::string("select id_state_harverting, date_begin, date_modified, date_end from ") +
              STATUS_TABLE);
  if (run.empty()) return nullptr;
  return {{"state", run[0]},
          {"stateName", Common::NameOf(static_cast<Common::RudStatus>(run[0]))},
          {"begin", TimeOf(run[1])},
          {"modified", TimeOf(run[2])},
          {"end", TimeOf(run[3])},
          {"files", numbers("select count(*) from RUD2_LAST_INVENTORY")[0]}};
}

std::string FileInventoryLine(const OrderedJson& state) {
  if (state.is_null()) return "file inventory: never\n";
  const auto timeOf = [&](const char* key) {
    return state[key].is_null() ? std::string("never") : state[key]["time"].get<std::string>();
  };
  // During a run, the end is still that of the previous run.
  const bool hasEnded = state["state"] == static_cast<int>(Common::RudStatusFinished);
  return "file inventory: " + state["stateName"].get<std::string>() + ", begun " + timeOf("begin") +
         (hasEnded ? ", ended " + timeOf("end") : "") + ", " + state["files"].dump() + " files\n";
}

}  // namespace Norvik::Cli
