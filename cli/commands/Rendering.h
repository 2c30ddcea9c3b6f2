#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "common/action/ActionPropertyValue.h"
#include "common/action/TaskResponseInfo.h"
#include "common/progress/ProgressListener.h"
#include "host/OutputText.h"

namespace Norvik::Cli {

using Host::OrderedJson;
using Host::PeriodText;
using Host::SizeText;

/// [{"status":7,"message":""}]
OrderedJson StatusesToJson(const std::vector<Common::TaskResponseInfo>& statuses);

/// [{"step":"compress","success":true}]
OrderedJson StepsToJson(const std::vector<Common::DocumentStep>& steps);

/// "7 started", or "7 started: message"
std::string StatusText(const Common::TaskResponseInfo& status);

/// The text of a cell in a table: texts with their control characters escaped, null as nothing.
std::string CellText(const OrderedJson& cell);
/// Number of characters of a text in UTF-8, not of its bytes.
std::size_t WidthOf(const std::string& text);

/// A cell of a table as it is printed.
struct PrintedCell {
  std::string text;
  bool alignRight = false;
};
PrintedCell PrintedCellOf(const OrderedJson& cell);
/// Texts are taken as they are, everything else through JSON.
PrintedCell PrintedCellOf(const Common::ActionPropertyValue& cell);

/// Builds a table whose rows come twice, in the same order: first each row is measured, then each
/// is added. So no row is kept.
class AlignedTable {
 public:
  template <class Row>
  void Measure(const Row& row) {
    std::size_t column = 0;
    for (const auto& cell : row) Measure(column++, PrintedCellOf(cell));
  }
  template <class Row>
  void Add(const Row& row) {
    std::size_t column = 0;
    for (const auto& cell : row) Add(column++, PrintedCellOf(cell));
    EndLine();
  }
  std::string Take() { return std::move(text_); }

 private:
  void Measure(std::size_t column, const PrintedCell& cell);
  void Add(std::size_t column, const PrintedCell& cell);
  void EndLine();

  std::vector<std::size_t> widths_;
  std::string text_;
};

/// Aligned columns, each as wide as its widest cell, with two spaces between them; one line per
/// row. Numbers are aligned right. Widths count characters, not bytes.
template <class Rows>
std::string TableText(const Rows& rows) {
  AlignedTable table;
  for (const auto& row : rows) table.Measure(row);
  for (const auto& row : rows) table.Add(row);
  return table.Take();
}

/// The keys of a configuration by where they come from, from an object of key and source: a line
/// for each source that has keys, such as "from the file: profileId, server".
std::string SourceLines(const OrderedJson& sources);

/// A message for the error channel, on one line: "norvik-agent: text", or in JSON
/// {"message":"text"}.
std::string MessageLine(bool json, const std::string& text);

/// "0.123 s"
std::string SecondsText(double seconds);

}  // namespace Norvik::Cli
