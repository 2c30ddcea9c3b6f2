#include <nlohmann/json.hpp>

#include "receiver/commands/Commands.h"
#include "receiver/protocol/Tasks.h"
#include "receiver/search/Expression.h"

namespace Norvik::Receiver {

namespace {

/// Parameters "name=value" or "name:type=value".
std::string ParametersOf(const TaskOptions& options) {
  nlohmann::json parameters = nlohmann::json::array();
  for (const std::string& text : options.parameters) {
    const auto equals = text.find('=');
    const std::string name = text.substr(0, equals);
    const auto colon = name.find(':');
    if (equals == std::string::npos || equals == 0 || colon == 0) {
      throw UsageError("a parameter is NAME=VALUE or NAME:TYPE=VALUE, not " + text);
    }
    parameters.push_back({{"name", name.substr(0, colon)},
                          {"type", colon == std::string::npos ? "text" : name.substr(colon + 1)},
                          {"value", text.substr(equals + 1)}});
  }
  return parameters.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::vector<std::string> AgentsOf(Session& session, const TaskOptions& options) {
  if (options.agent.empty() == options.search.empty()) {
    throw UsageError("a task needs either --agent or --search");
  }
  std::vector<std::string> agents;
  if (!options.agent.empty()) {
    const auto rows = session.Rows<1>("SELECT agent FROM agents WHERE agent=?", {options.agent});
    if (rows.empty()) throw std::runtime_error("There is no such agent: " + options.agent);
    return {options.agent};
  }
  const Condition condition = ConditionOf(options.search);
  for (const auto& row : session.Rows<1>("SELECT a.agent FROM agents a WHERE a.state='enrolled' "
                                         "AND " +
                                             condition.statement + " ORDER BY a.agent",
                                         condition.values)) {
    agents.push_back(row[0]);
  }
  const bool mustBeSaid = IsDestructive(options.code);
  const auto count = static_cast<long long>(agents.size());
  if ((mustBeSaid || options.machines >= 0) && options.machines != count) {
    throw UsageError("the search finds " + std::to_string(count) + " machines: say --machines " +
                     std::to_string(count) + " to give all of them the task");
  }
  return agents;
}

void AddTasks(const Place& place, Session& session, const TaskOptions& options) {
  if (options.code <= 0) throw UsageError("a task needs --code");
  NewTask task{options.code, options.name, ParametersOf(options), options.period, options.next};
  if (task.name.empty()) task.name = "action " + std::to_string(task.code);
  std::vector<std::vector<std::string>> rows;
  Transaction transaction(session);
  for (const std::string& agent : AgentsOf(session, options)) {
    rows.push_back({agent, AddTask(session, agent, task)});
  }
  transaction.Commit();
  PrintRows(place, {"agent", "task"}, rows);
}

void ListTasks(const Place& place, Session& session, const std::string& agent) {
  const std::string rows =
      "SELECT agent, task, code, name, created, given, ended, status FROM tasks ";
  const std::vector<std::string> columns = {"agent",    "task",   "code#",  "name",
                                            "created#", "given#", "ended#", "status#"};
  PrintRows(place, columns,
            agent.empty()
                ? session.Rows<8>(rows + "WHERE ended=0 ORDER BY created, task")
                : session.Rows<8>(rows + "WHERE agent=? ORDER BY created, task", {agent}));
}

void ShowTask(const Place& place, Session& session, const TaskOptions& options) {
  PrintRows(place, {"kind", "time#", "body"},
            session.Rows<3>("SELECT kind, time, body FROM reports WHERE agent=? AND task=? "
                            "ORDER BY number",
                            {options.agent, options.task}));
}

}  // namespace

int ChangeTasks(const Place& place, const TaskOptions& options) {
  Session session = place.Open();
  if (options.action == "add") {
    AddTasks(place, session, options);
  } else if (options.action == "list") {
    ListTasks(place, session, options.agent);
  } else if (options.agent.empty() || options.task.empty()) {
    throw UsageError("task " + options.action + " needs --agent and --task");
  } else if (options.action == "show") {
    ShowTask(place, session, options);
  } else if (session.Run("UPDATE tasks SET ended=? WHERE agent=? AND task=? AND ended=0",
                         {Now(), options.agent, options.task}) == 0) {
    throw std::runtime_error("There is no such task that has not ended");
  }
  return 0;
}

}  // namespace Norvik::Receiver
