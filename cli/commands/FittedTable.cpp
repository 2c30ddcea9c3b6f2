#include "cli/commands/FittedTable.h"

#include <algorithm>

namespace Norvik::Cli {

namespace {

using Rows = std::vector<TableRow>;
using Widths = std::vector<std::size_t>;

constexpr std::size_t GAP = 2;
constexpr std::size_t LEAST_COLUMN = 10;
constexpr char DOTS[] = "...";

/// The first characters of a text, then dots, in `width` characters.
std::string Cut(const std::string& text, std::size_t width) {
  const std::size_t dots = std::min(width, sizeof(DOTS) - 1);
  std::size_t end = 0;
  for (std::size_t characters = 0; end < text.size(); ++end) {
    const bool begins = (static_cast<unsigned char>(text[end]) & 0xC0) != 0x80;
    if (begins && ++characters > width - dots) break;
  }
  return text.substr(0, end) + std::string(DOTS, dots);
}

Widths WidthsOf(const Rows& rows) {
  Widths widths;
  for (const TableRow& row : rows) {
    if (row.size() > widths.size()) widths.resize(row.size());
    for (std::size_t i = 0; i < row.size(); ++i) {
      widths[i] = std::max(widths[i], WidthOf(CellText(row[i])));
    }
  }
  return widths;
}

/// The largest width of a column with which all fit; 0 if none does.
std::size_t LimitOf(const Widths& widths, std::size_t width) {
  const auto sum = [&](std::size_t limit) {
    std::size_t total = GAP * (widths.size() - 1);
    for (const std::size_t each : widths) total += std::min(each, limit);
    return total;
  };
  std::size_t limit = std::min(width, *std::max_element(widths.begin(), widths.end()));
  while (limit > 0 && sum(limit) > width) --limit;
  return limit;
}

std::string RowsAsLines(const Rows& rows, std::size_t width) {
  std::string text;
  for (std::size_t i = 1; i < rows.size(); ++i) {
    Rows lines;
    for (std::size_t j = 0; j < rows[i].size(); ++j) {
      const std::string cell = CellText(rows[i][j]);
      if (!cell.empty()) lines.push_back({rows[0][j], cell});
    }
    text += (i == 1 ? "" : "\n") + FittedTable(lines, width);
  }
  return text;
}

}  // namespace

std::string FittedTable(const Rows& rows, std::size_t width) {
  const Widths widths = WidthsOf(rows);
  if (width == 0 || widths.empty()) return TableText(rows);
  const std::size_t limit = LimitOf(widths, width);
  const bool isCut = limit < *std::max_element(widths.begin(), widths.end());
  if (isCut && limit < LEAST_COLUMN && widths.size() > 2) return RowsAsLines(rows, width);
  Rows cut = rows;
  for (TableRow& row : cut) {
    for (OrderedJson& cell : row) {
      const std::string text = CellText(cell);
      if (WidthOf(text) > limit) cell = Cut(text, std::max(limit, std::size_t{1}));
    }
  }
  return TableText(cut);
}

}  // namespace Norvik::Cli
