#include "cli/commands/ActionOutcome.h"

#include "common/text/Text.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

using namespace Common;

std::vector<OrderedJson> CellsOf(const ActionResponseTable::Row& row) {
  std::vector<OrderedJson> cells;
  for (const auto& value : row) cells.push_back(CellToJson(value));
  return cells;
}

}  // namespace

bool ActionOutcome::HasFailed() const {
  if (!failure.empty() || response.text) return true;
  return !statuses.empty() && statuses.back().status == TaskResponseInfo::TASK_FAILED;
}

std::string ActionOutcome::Reason() const {
  if (!failure.empty()) return OnOneLine(failure);
  if (response.text && !response.text->empty()) return OnOneLine(*response.text);
  return statuses.empty() ? "" : OnOneLine(statuses.back().message);
}

OrderedJson ToJson(unsigned int code, const ActionOutcome& outcome) {
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
          {"success", !outcome.HasFailed()},
          {"titles", titles},
          {"rows", rows},
          {"statuses", StatusesToJson(outcome.statuses)}};
}

std::string ToText(const ActionOutcome& outcome) {
  std::vector<std::vector<OrderedJson>> rows;
  for (const auto& row : outcome.response.table.Rows()) rows.push_back(CellsOf(row));
  std::string text = TableText(rows);
  if (outcome.response.text) text += "text: " + EscapeControls(*outcome.response.text) + "\n";
  text += std::string("success: ") + (outcome.HasFailed() ? "false" : "true") + "\n";
  for (const auto& status : outcome.statuses) text += "status: " + StatusText(status) + "\n";
  return text;
}

}  // namespace Norvik::Cli
