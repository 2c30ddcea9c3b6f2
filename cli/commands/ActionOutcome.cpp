#include "cli/commands/ActionOutcome.h"

#include "common/text/Text.h"

namespace Norvik::Cli {

using namespace Host;
using namespace Common;

bool ActionOutcome::HasFailed() const {
  if (!failure.empty() || response.text) return true;
  return !statuses.empty() && statuses.back().status == TaskResponseInfo::TASK_FAILED;
}

std::string ActionOutcome::Reason() const {
  if (!failure.empty()) return OnOneLine(failure);
  if (response.text && !response.text->empty()) return OnOneLine(*response.text);
  return statuses.empty() ? "" : OnOneLine(statuses.back().message);
}

// Row by row: the rows of a large table as JSON values would take several times its memory.
std::string ToJsonLine(unsigned int code, const ActionOutcome& outcome) {
  const auto& rows = outcome.response.table.Rows();
  const bool hasTitles = outcome.response.table.HasTitles() && !rows.empty();
  std::string text = "{\"code\":" + std::to_string(code) +
                     ",\"text\":" + JsonText(outcome.response.text.get_value_or("")) +
                     ",\"success\":" + JsonText(!outcome.HasFailed()) +
                     ",\"titles\":" + (hasTitles ? RowText(rows.front()) : "[]") + ",\"rows\":[";
  for (std::size_t row = hasTitles ? 1 : 0; row < rows.size(); ++row) {
    if (text.back() != '[') text += ',';
    text += RowText(rows[row]);
  }
  return text + "],\"statuses\":" + JsonText(StatusesToJson(outcome.statuses)) + "}\n";
}

std::string ToText(const ActionOutcome& outcome) {
  std::string text = TableText(outcome.response.table.Rows());
  if (outcome.response.text) text += "text: " + EscapeControls(*outcome.response.text) + "\n";
  text += std::string("success: ") + (outcome.HasFailed() ? "false" : "true") + "\n";
  for (const auto& status : outcome.statuses) text += "status: " + StatusText(status) + "\n";
  return text;
}

}  // namespace Norvik::Cli
