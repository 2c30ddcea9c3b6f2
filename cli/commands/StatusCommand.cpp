#include <algorithm>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/filesystem/operations.hpp>
#include <map>
#include <ostream>

#include "cli/commands/Commands.h"
#include "cli/commands/FileInventoryState.h"
#include "cli/commands/Rendering.h"
#include "cli/commands/RunningAgent.h"
#include "cli/why/LedgerView.h"
#include "common/action/ActionCodes.h"
#include "common/action/InventorySchedules.h"
#include "common/database/AgentData.h"
#include "common/database/AgentDatabase.h"
#include "common/files/Paths.h"
#include "common/text/Text.h"
#include "host/actions/PeriodicState.h"
#include "host/configuration/ConfigurationFile.h"
#include "host/configuration/ConfigurationWarnings.h"
#include "host/data/DataFolder.h"
#include "host/identity/AgentIdentity.h"
#include "host/ipc/AskAgent.h"
#include "host/ledger/LedgerTable.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

using namespace Common;
namespace fs = boost::filesystem;
using std::chrono::system_clock;

OrderedJson TimeToJson(system_clock::time_point time) {
  return {{"seconds", system_clock::to_time_t(time)}, {"time", TimeText(time)}};
}

/// Content of the agent database; empty without a database.
struct Stored {
  std::map<std::string, std::string> data;  ///< rows of the "DATA" table
  OrderedJson fileInventory;
  OrderedJson lastRun;  ///< of machine inventories, as the ledger has it
};

std::map<std::string, std::string> ReadData(AgentDatabase& dataBase) {
  std::map<std::string, std::string> data;
  const auto table = dataBase.GetTable(AGENT_DATA_TABLE, 0, 0, 0);
  if (!table) return data;
  const auto columnOf = [&](const char* name) {
    const auto found = std::find_if(table->columns.begin(), table->columns.end(),
                                    [&](const auto& column) { return column.name == name; });
    return static_cast<std::size_t>(found - table->columns.begin());
  };
  const std::size_t name = columnOf("name");
  const std::size_t value = columnOf("value");
  for (const auto& row : table->rows) data[row.at(name)] = row.at(value);
  return data;
}

Stored ReadStored(const fs::path& folder) {
  if (!fs::exists(folder / SQLiteNames::SQLITE_CURRENT_DATABASE_NAME)) return {};
  AgentDatabase dataBase(folder, AgentDatabase::Access::ReadOnly);
  return {ReadData(dataBase), ReadFileInventoryState(), LastRunOf({ReadLedgerRuns(), ""})};
}

OrderedJson LastInventory(const std::map<std::string, std::string>& data) {
  const auto found = data.find(LAST_DOCUMENT_KEY);
  const auto state = found == data.end() ? boost::none : ParsePeriodicState("0 " + found->second);
  if (!state || state->next == system_clock::time_point()) return nullptr;
  return TimeToJson(state->next);
}

std::string NameOf(const std::string& code) {
  for (const ActionName& action : ACTION_NAMES) {
    if (std::to_string(action.code) == code) return action.name;
  }
  return "";
}

OrderedJson PeriodicActions(const std::map<std::string, std::string>& data) {
  OrderedJson list = OrderedJson::array();
  for (const auto& [key, text] : data) {
    const auto state = ParsePeriodicState(text);
    if (!state) continue;
    OrderedJson entry;
    if (boost::starts_with(key, PERIODIC_KEY_PREFIX)) {
      const std::string code = key.substr(sizeof(PERIODIC_KEY_PREFIX) - 1);
      entry = {{"code", std::stoul(code)}, {"name", NameOf(code)}};
    } else if (boost::starts_with(key, SCHEDULE_KEY_PREFIX)) {
      entry = {{"schedule", key.substr(sizeof(SCHEDULE_KEY_PREFIX) - 1)}};
    } else {
      continue;
    }
    entry["periodSeconds"] = state->period.count();
    entry["next"] = system_clock::to_time_t(state->Due());
    entry["nextTime"] = TimeText(state->Due());
    list.push_back(entry);
  }
  return list;
}

/// The files of a folder, by name. Leaves out hidden files, which are still being written, and
/// those that an agent removes meanwhile.
OrderedJson FilesIn(const fs::path& folder) {
  std::map<std::string, OrderedJson> files;
  boost::system::error_code error;
  for (fs::directory_iterator item(folder, error), end; item != end; item.increment(error)) {
    const fs::path path = item->path();
    boost::system::error_code gone;
    if (path.filename().string().front() == '.' || !fs::is_regular_file(path, gone)) continue;
    const auto bytes = fs::file_size(path, gone);
    const auto time = fs::last_write_time(path, gone);
    if (gone) continue;
    files[path.string()] = {{"file", path.string()},
                            {"bytes", bytes},
                            {"time", TimeText(system_clock::from_time_t(time))}};
  }
  OrderedJson list = OrderedJson::array();
  for (const auto& file : files) list.push_back(file.second);
  return list;
}

/// The status of the running agent; null if no agent answers or it refuses, with the reason under
/// `problem` if one runs all the same.
OrderedJson AskForStatus(const fs::path& socket, OrderedJson& problem) {
  try {
    return AskRunningAgent(socket, {{"request", "status"}});
  } catch (const NoAnswer& silence) {
    if (silence.Runs()) problem = silence.Reason();
  } catch (const std::runtime_error& refusal) {
    problem = refusal.what();
  }
  return nullptr;
}

OrderedJson Gather(const CommandLine& line) {
  OrderedJson problem;
  OrderedJson agent = AskForStatus(line.socket, problem);
  const std::string folderOfAgent = agent.is_null() ? "" : agent.value("dataFolder", "");
  const bool follow = !line.dataFolderGiven && !folderOfAgent.empty();
  Paths::SetDataFolder(follow ? fs::path(folderOfAgent) : line.agent.dataFolder);
  const fs::path folder = Paths(Paths::DATA, false).AppData();
  if (folderOfAgent != folder) agent = nullptr;
  if (fs::exists(folder) && !fs::is_directory(folder)) {
    throw std::runtime_error("the data folder " + folder.string() + " is no folder");
  }
  const Stored database = ReadStored(folder);
  const auto identity = ReadIdentity(folder / IDENTITY_FILE);
  const fs::path stored = folder / CONFIGURATION_FILE;
  const bool configured = fs::exists(stored);
  const auto configuration = ReadConfiguration(line.agent.configurationFile, stored);
  return {{"dataFolder", folder.string()},
          {"agent", agent},
          {"agentProblem", problem},
          {"identifier", identity ? OrderedJson(identity->identifier) : OrderedJson()},
          {"configured", configured},
          {"sources", configuration.sources},
          {"profileId", configuration.values.profileId},
          {"server", configuration.values.communications.address},
          {"deliveryProblem",
           DeliveryProblem(configuration.values.communications, folder / KEY_FOLDER)},
          {"lastInventory", LastInventory(database.data)},
          {"fileInventory", database.fileInventory},
          {"previous", FilesIn(Paths(Paths::PREVIOUS_INVENTORY, false).AppData())},
          {"outbox", FilesIn(Paths(Paths::OUTBOX, false).AppData())},
          {"periodic", PeriodicActions(database.data)},
          {"ledger", database.lastRun}};
}

std::string FileLines(const char* title, const OrderedJson& files) {
  std::string text;
  for (const auto& file : files) {
    text += std::string(title) + ": " + EscapeControls(file["file"].get<std::string>()) + ", " +
            SizeText(file["bytes"]) + ", " + file["time"].get<std::string>() + "\n";
  }
  return text.empty() ? std::string(title) + ": none\n" : text;
}

std::string ToText(const OrderedJson& status) {
  const auto orElse = [](const OrderedJson& value, const char* otherwise) {
    return value.is_string() && value != "" ? value.get<std::string>() : otherwise;
  };
  std::string text = "data folder: " + status["dataFolder"].get<std::string>() + "\n";
  text += RunningAgentLines(status["agent"], status["agentProblem"]);
  text += "identifier: " + orElse(status["identifier"], "none yet") + "\n";
  text += std::string("configuration: ") +
          (status["configured"].get<bool>() ? "stored" : "none stored") + "\n" +
          SourceLines(status["sources"]);
  text += "profile: " + status["profileId"].dump() + "\n";
  text += "server: " + orElse(status["server"], "none") + "\n";
  const auto problem = status["deliveryProblem"].get<std::string>();
  if (!problem.empty()) text += "no document is delivered: " + EscapeControls(problem) + "\n";
  const OrderedJson& last = status["lastInventory"];
  text += "last inventory: " + (last.is_null() ? "never" : last["time"].get<std::string>()) + "\n";
  text += LastRunLines(status["ledger"]);
  text += FileInventoryLine(status["fileInventory"]);
  text += FileLines("previous document", status["previous"]);
  text += FileLines("outbox", status["outbox"]);
  for (const auto& entry : status["periodic"]) {
    const std::string what = entry.contains("code")
                                 ? entry["code"].dump() + " " + entry["name"].get<std::string>()
                                 : "schedule " + entry["schedule"].get<std::string>();
    text += "periodic: " + what + " every " +
            PeriodText(std::chrono::seconds(entry["periodSeconds"])) + ", next " +
            entry["nextTime"].get<std::string>() + "\n";
  }
  return text;
}

}  // namespace

int RunStatus(const CommandLine& line, std::ostream& output, std::ostream& errors) {
  const LoggerScope silence(std::make_shared<ListeningLogger>(nullptr, LogListener()));
  const OrderedJson status = Gather(line);
  output << (line.json ? JsonLine(status) : ToText(status));
  const auto problem = status["deliveryProblem"].get<std::string>();
  if (problem.empty()) return EXIT_DONE;
  errors << MessageLine(line.json, "no document is delivered: " + problem) << std::flush;
  return EXIT_FAILED;
}

}  // namespace Norvik::Cli
