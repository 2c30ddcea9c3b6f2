#include <unistd.h>

#include <algorithm>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/filesystem/operations.hpp>
#include <cerrno>
#include <ctime>
#include <map>
#include <ostream>

#include "cli/commands/Commands.h"
#include "cli/commands/FileInventoryState.h"
#include "cli/commands/Rendering.h"
#include "cli/commands/RunningAgent.h"
#include "cli/commands/ServerStatus.h"
#include "cli/commands/StatusChecks.h"
#include "cli/commands/StatusReport.h"
#include "cli/why/LedgerView.h"
#include "common/action/ActionCodes.h"
#include "common/action/InventorySchedules.h"
#include "common/database/AgentData.h"
#include "common/database/AgentDatabase.h"
#include "common/files/Paths.h"
#include "common/text/Text.h"
#include "host/HostError.h"
#include "host/actions/PeriodicState.h"
#include "host/configuration/ConfigurationFile.h"
#include "host/configuration/ConfigurationWarnings.h"
#include "host/data/DataFolder.h"
#include "host/identity/AgentIdentity.h"
#include "host/ipc/AskAgent.h"
#include "host/ledger/LedgerTable.h"
#include "host/server/ServerContact.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

using namespace Common;
namespace fs = boost::filesystem;
using std::chrono::system_clock;

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

constexpr std::size_t SHOWN_WARNINGS = 3;  ///< in text, which fits on a screen

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
                            {"seconds", time},
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

/// Whether this user may read the data folder. What does not exist counts as readable.
bool IsReadable(const fs::path& folder) {
  const auto isReadable = [](const fs::path& path, int how) {
    return ::access(path.c_str(), how) == 0 || errno != EACCES;
  };
  return isReadable(folder, R_OK | X_OK) && isReadable(folder / IDENTITY_FILE, R_OK) &&
         isReadable(folder / SQLiteNames::SQLITE_CURRENT_DATABASE_NAME, R_OK);
}

/// A part of the status, by default if it cannot be read; then the reason is a problem.
template <class Read>
auto Try(OrderedJson& problems, Read read) -> decltype(read()) {
  try {
    return read();
  } catch (const std::exception& error) {
    problems.push_back(ReasonOf(error));
    return {};
  }
}

/// Seconds since the epoch when the configuration or the identity last changed; 0 without both.
std::time_t ConfiguredAt(const fs::path& folder) {
  std::time_t latest = 0;
  for (const char* name : {CONFIGURATION_FILE, IDENTITY_FILE}) {
    boost::system::error_code absent;
    const std::time_t time = fs::last_write_time(folder / name, absent);
    if (!absent) latest = std::max(latest, time);
  }
  return latest;
}

OrderedJson SpaceOf(const fs::path& folder) {
  boost::system::error_code absent;
  const fs::space_info space = fs::space(folder, absent);
  if (absent) return nullptr;
  return {{"freeBytes", space.available}, {"bytes", space.capacity}};
}

/// Not for a machine that nobody has configured.
OrderedJson Warnings(const EffectiveConfiguration& configuration, const fs::path& keys) {
  OrderedJson list = OrderedJson::array();
  const auto& sources = configuration.sources;
  const bool isDefault = std::all_of(sources.begin(), sources.end(), [](const auto& source) {
    return source.second == FROM_DEFAULT;
  });
  if (isDefault) return list;
  for (const auto& warning : WarningsOf(configuration.values, keys)) {
    if (warning.key == "server") continue;  // is a problem of the delivery
    list.push_back(warning.key + ": " + warning.value + (warning.value.empty() ? "" : " ") +
                   warning.text);
  }
  return list;
}

/// How the agent that runs reaches its server, else how the last one did.
std::string ContactOf(const Stored& database, const OrderedJson& agent) {
  if (agent.is_object() && agent.contains("contact")) return agent["contact"].dump();
  const auto known = database.data.find(SERVER_CONTACT_KEY);
  return known == database.data.end() ? "" : known->second;
}

/// What the data folder says.
OrderedJson GatherData(const CommandLine& line, const fs::path& folder, const OrderedJson& agent) {
  OrderedJson problems = OrderedJson::array();
  const Stored database = Try(problems, [&] { return ReadStored(folder); });
  const auto identity = Try(problems, [&] { return ReadIdentity(folder / IDENTITY_FILE); });
  const fs::path stored = folder / CONFIGURATION_FILE;
  const std::string ofAgent = agent.is_null() ? "" : agent.value("configurationFile", "");
  const fs::path& given = line.agent.configurationFile;
  const auto configuration = given.empty()
                                 ? Try(problems, [&] { return ReadConfiguration(ofAgent, stored); })
                                 : ReadConfiguration(given, stored);
  const auto& communications = configuration.values.communications;
  const OrderedJson outbox = FilesIn(Paths(Paths::OUTBOX, false).AppData());
  OrderedJson states = Try(problems, [&] { return WaitingStates(folder); });
  if (states.is_null()) states = WaitingDocuments({});
  OrderedJson answers = Try(problems, [&] { return WaitingAnswers(folder); });
  if (answers.is_null()) answers = WaitingDocuments({});
  OrderedJson data = {{"identifier", identity ? OrderedJson(identity->identifier) : OrderedJson()},
                      {"configured", fs::exists(stored)},
                      {"configuredAt", ConfiguredAt(folder)},
                      {"sources", configuration.sources},
                      {"profileId", configuration.values.profileId}};
  data.update(ServerState(communications, identity, ContactOf(database, agent)));
  data.update(
      {{"deliveryProblem", DeliveryProblem(communications, folder / KEY_FOLDER)},
       {"waiting",
        {{"documents", WaitingDocuments(outbox)}, {"states", states}, {"answers", answers}}},
       {"lastInventory", LastInventory(database.data)},
       {"fileInventory", database.fileInventory},
       {"previous", FilesIn(Paths(Paths::PREVIOUS_INVENTORY, false).AppData())},
       {"outbox", outbox},
       {"periodic", PeriodicActions(database.data)},
       {"ledger", database.lastRun},
       {"disk", SpaceOf(folder)},
       {"warnings", Warnings(configuration, folder / KEY_FOLDER)}});
  data["problems"] = problems;
  return data;
}

std::string InventoryLines(const OrderedJson& status, system_clock::time_point now) {
  std::string text = "last inventory: " + AgeText(status["lastInventory"], now) + "\n" +
                     LastRunLines(status["ledger"]) + FileInventoryLine(status["fileInventory"]);
  for (const auto& file : status["previous"]) {
    text += "previous document: " + EscapeControls(file["file"].get<std::string>()) + ", " +
            SizeText(file["bytes"]) + ", " + file["time"].get<std::string>() + "\n";
  }
  return text;
}

std::string ScheduleLines(const OrderedJson& status) {
  std::string text;
  for (const auto& entry : status["periodic"]) {
    const std::string what =
        entry.contains("code") ? entry["code"].dump() + " " + entry["name"].get<std::string>()
                               : "schedule " + EscapeControls(entry["schedule"].get<std::string>());
    text += "periodic: " + what + " every " +
            PeriodText(std::chrono::seconds(entry["periodSeconds"])) + ", next " +
            entry["nextTime"].get<std::string>() + "\n";
  }
  return text;
}

/// What needs a person comes last, where it is seen.
std::string WarningLines(const OrderedJson& status) {
  std::string text;
  const OrderedJson& warnings = status["warnings"];
  for (std::size_t i = 0; i < std::min(warnings.size(), SHOWN_WARNINGS); ++i) {
    text += "warning: " + EscapeControls(warnings[i].get<std::string>()) + "\n";
  }
  if (warnings.size() > SHOWN_WARNINGS) {
    text += "warnings: " + std::to_string(warnings.size() - SHOWN_WARNINGS) +
            " more, which --json lists\n";
  }
  for (const auto& finding : status["attention"]) {
    text += "needs attention: " + EscapeControls(finding["text"].get<std::string>()) + "\n";
  }
  return text;
}

std::string ToText(const OrderedJson& status) {
  const auto now = system_clock::now();
  const OrderedJson& identifier = status["identifier"];
  return "identifier: " +
         (identifier.is_null() ? "none yet" : EscapeControls(identifier.get<std::string>())) +
         "\nconfiguration: " + (status["configured"].get<bool>() ? "stored" : "none stored") +
         "\n" + SourceLines(status["sources"]) + "profile: " + status["profileId"].dump() + "\n" +
         ServerLines(status, now) + InventoryLines(status, now) + ScheduleLines(status) +
         WarningLines(status);
}

}  // namespace

OrderedJson StatusOf(const CommandLine& line) {
  OrderedJson problem;
  OrderedJson agent = AskForStatus(line.socket, problem);
  const std::string folderOfAgent = agent.is_null() ? "" : agent.value("dataFolder", "");
  const bool follow = !line.dataFolderGiven && !folderOfAgent.empty();
  Paths::SetDataFolder(follow ? fs::path(folderOfAgent) : line.agent.dataFolder);
  const fs::path folder = Paths(Paths::DATA, false).AppData();
  if (folderOfAgent != folder) agent = nullptr;
  OrderedJson status = {
      {"dataFolder", folder.string()}, {"agent", agent}, {"agentProblem", problem}};
  status["readable"] = IsReadable(folder);
  if (!status["readable"].get<bool>()) return status;
  if (fs::exists(folder) && !fs::is_directory(folder)) {
    throw std::runtime_error("the data folder " + folder.string() + " is no folder");
  }
  status.update(GatherData(line, folder, agent));
  status["attention"] = AttentionOf(status, system_clock::now());
  return status;
}

int RunStatus(const CommandLine& line, std::ostream& output, std::ostream& errors) {
  const LoggerScope silence(std::make_shared<ListeningLogger>(nullptr, LogListener()));
  const OrderedJson status = StatusOf(line);
  const bool isReadable = status["readable"].get<bool>();
  const std::string folder = EscapeControls(status["dataFolder"].get<std::string>());
  if (line.json) {
    output << JsonLine(status);
  } else {
    output << "data folder: " << folder << "\n"
           << RunningAgentLines(status["agent"], status["agentProblem"])
           << (isReadable ? ToText(status) : "");
  }
  if (isReadable) return status["attention"].empty() ? EXIT_DONE : EXIT_ATTENTION;
  errors << MessageLine(line.json, "only its owner and root may read the data folder " + folder)
         << std::flush;
  return EXIT_FAILED;
}

}  // namespace Norvik::Cli
