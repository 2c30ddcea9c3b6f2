#include <ostream>

#include "host/AgentProgram.h"
#include "host/commands/ActionArguments.h"
#include "host/commands/Commands.h"
#include "host/commands/Rendering.h"
#include "host/commands/StatusRecorder.h"

namespace Norvik::Host {

namespace {

using namespace Common;

struct Outcome {
  ActionResponse response;
  std::vector<TaskResponseInfo> statuses;
  std::string failure;  ///< what the handler raised; empty if it returned
};

std::vector<OrderedJson> CellsOf(const ActionResponseTable::Row& row) {
  std::vector<OrderedJson> cells;
  for (const auto& value : row) cells.push_back(CellToJson(value));
  return cells;
}

OrderedJson ToJson(unsigned int code, const Outcome& outcome) {
  OrderedJson titles = OrderedJson::array();
  OrderedJson rows = OrderedJson::array();
  for (const auto& row : outcome.response.table.Rows()) {
    const bool isTitles = outcome.response.table.HasTitles() && titles.empty() && rows.empty();
    if (isTitles) {
      titles = CellsOf(row);
    } else {
      rows.push_back(CellsOf(row));
    }
  }
  return {{"code", code},
          {"text", outcome.response.text.get_value_or("")},
          {"success", outcome.response.success},
          {"titles", titles},
          {"rows", rows},
          {"statuses", StatusesToJson(outcome.statuses)}};
}

std::string ToText(const Outcome& outcome) {
  std::vector<std::vector<OrderedJson>> rows;
  for (const auto& row : outcome.response.table.Rows()) rows.push_back(CellsOf(row));
  std::string text = TableText(rows);
  if (outcome.response.text) text += "text: " + *outcome.response.text + "\n";
  text += std::string("success: ") + (outcome.response.success ? "true" : "false") + "\n";
  for (const auto& status : outcome.statuses) text += "status: " + StatusText(status) + "\n";
  return text;
}

/// An action says in different ways that it failed.
bool HasFailed(const Outcome& outcome) {
  if (!outcome.failure.empty() || outcome.response.text) return true;
  return !outcome.statuses.empty() &&
         outcome.statuses.back().status == TaskResponseInfo::TASK_FAILED;
}

Outcome RunOne(AgentHost& host, unsigned int code, const ActionParameters& parameters) {
  Outcome outcome;
  const StatusRecorder recorder(host.GetCommunications());
  try {
    outcome.response = host.Run(code, parameters);
  } catch (const std::exception& error) {
    outcome.failure = *error.what() ? error.what() : "the action raised an exception";
  }
  outcome.statuses = recorder.Statuses();
  return outcome;
}

}  // namespace

int RunAction(const CommandLine& line, std::ostream& output, std::ostream& errors) {
  const unsigned int code = ParseActionCode(line.action);
  const ActionParameters parameters = ParseActionParameters(line.parameters);
  AgentHost host(line.agent);
  if (host.Module().GetAction(code, {}).name.empty()) {
    errors << "norvik-agent: no handler is registered for the action " << code << std::endl;
  }
  const Outcome outcome = RunOne(host, code, parameters);
  output << (line.json ? JsonLine(ToJson(code, outcome)) : ToText(outcome));
  if (!outcome.failure.empty()) {
    errors << "norvik-agent: action " << code << " failed: " << outcome.failure << std::endl;
  }
  return HasFailed(outcome) ? EXIT_FAILED : EXIT_DONE;
}

}  // namespace Norvik::Host
