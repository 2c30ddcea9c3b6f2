#include "cli/commands/Rendering.h"

#include <algorithm>
#include <boost/format.hpp>
#include <cstddef>
#include <cstdio>

#include "common/text/Text.h"
#include "host/configuration/ConfigurationFile.h"
#include "host/run/ResponseJson.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

using namespace Common;

const char* NameOf(DocumentStep::Kind step) {
  static constexpr const char* NAMES[] = {"write", "copy", "compress", "encrypt",
                                          "move to the outbox"};
  return NAMES[step];
}

const char* NameOf(TaskResponseInfo::ResponseStatusTypes status) {
  switch (status) {
    case TaskResponseInfo::TASK_FINISHED:
      return "finished";
    case TaskResponseInfo::TASK_NOT_RUN:
      return "not run";
    case TaskResponseInfo::TASK_STARTED:
      return "started";
    case TaskResponseInfo::TASK_FAILED:
      return "failed";
  }
  return "";
}

}  // namespace

OrderedJson StatusesToJson(const std::vector<TaskResponseInfo>& statuses) {
  OrderedJson list = OrderedJson::array();
  for (const auto& it : statuses) {
    list.push_back({{"status", static_cast<unsigned int>(it.status)}, {"message", it.message}});
  }
  return list;
}

OrderedJson StepsToJson(const std::vector<DocumentStep>& steps) {
  OrderedJson list = OrderedJson::array();
  for (const auto& step : steps)
    list.push_back({{"step", NameOf(step.kind)}, {"success", step.done}});
  return list;
}

std::string StatusText(const TaskResponseInfo& status) {
  std::string text = std::to_string(static_cast<unsigned int>(status.status));
  text += std::string(" ") + NameOf(status.status);
  return status.message.empty() ? text : text + ": " + EscapeControls(status.message);
}

std::string CellText(const OrderedJson& cell) {
  if (cell.is_string()) return EscapeControls(cell.get<std::string>());
  return cell.is_null() ? "" : cell.dump();
}

std::size_t WidthOf(const std::string& text) {
  const auto starts = std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  });
  return static_cast<std::size_t>(starts);
}

PrintedCell PrintedCellOf(const OrderedJson& cell) { return {CellText(cell), cell.is_number()}; }

PrintedCell PrintedCellOf(const ActionPropertyValue& cell) {
  if (const auto* const text = boost::get<std::string>(&cell)) return {EscapeControls(*text)};
  return PrintedCellOf(Host::CellToJson(cell));
}

void AlignedTable::Measure(std::size_t column, const PrintedCell& cell) {
  if (column >= widths_.size()) widths_.resize(column + 1);
  widths_[column] = std::max(widths_[column], WidthOf(cell.text));
}

void AlignedTable::Add(std::size_t column, const PrintedCell& cell) {
  if (column > 0) text_ += "  ";
  const std::size_t padding = widths_[column] - WidthOf(cell.text);
  if (cell.alignRight) text_.append(padding, ' ');
  text_ += cell.text;
  if (!cell.alignRight) text_.append(padding, ' ');
}

void AlignedTable::EndLine() {
  while (!text_.empty() && text_.back() == ' ') text_.pop_back();
  text_ += '\n';
}

std::string SourceLines(const OrderedJson& sources) {
  static constexpr const char* TITLES[][2] = {{FROM_MANAGED, "from the managed preferences: "},
                                              {FROM_FILE, "from the file: "},
                                              {FROM_DEFAULT, "by default: "}};
  std::string text;
  for (const auto& [source, title] : TITLES) {
    std::string keys;
    for (const auto& [key, from] : sources.items()) {
      if (from == source) keys += (keys.empty() ? "" : ", ") + key;
    }
    if (!keys.empty()) text += title + keys + "\n";
  }
  return text;
}

std::string MessageLine(bool json, const std::string& text) {
  const std::string line = OnOneLine(text);
  return json ? JsonLine({{"message", line}}) : "norvik-agent: " + EscapeControls(line) + "\n";
}

std::string SecondsText(double seconds) {
  char text[32];
  std::snprintf(text, sizeof(text), "%.3f s", seconds);
  return text;
}

}  // namespace Norvik::Cli
