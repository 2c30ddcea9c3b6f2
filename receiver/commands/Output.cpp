#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <iostream>
#include <nlohmann/json.hpp>

#include "receiver/commands/Commands.h"
#include "receiver/database/Schema.h"

namespace Norvik::Receiver {

namespace {

/// A control character in a text of an agent must not reach the terminal.
std::string Printable(std::string text) {
  for (char& c : text) {
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = '?';
  }
  return text;
}

void PrintJson(const std::vector<std::string>& columns, const std::vector<std::string>& row) {
  nlohmann::ordered_json line = nlohmann::ordered_json::object();
  for (std::size_t column = 0; column < columns.size(); ++column) {
    const std::string& name = columns[column];
    if (name.back() == '#') {
      line[name.substr(0, name.size() - 1)] = row[column].empty() ? 0 : std::stoll(row[column]);
    } else {
      line[name] = row[column];
    }
  }
  std::cout << line.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

void PrintText(const std::vector<std::string>& cells, const std::vector<std::size_t>& widths) {
  std::string line;
  for (std::size_t column = 0; column < cells.size(); ++column) {
    std::string cell = Printable(cells[column]);
    if (column + 1 < cells.size()) cell.resize(std::max(cell.size(), widths[column]), ' ');
    line += (column == 0 ? "" : "  ") + cell;
  }
  std::cout << line << '\n';
}

}  // namespace

void PrintRows(const Place& place, const std::vector<std::string>& columns,
               const std::vector<std::vector<std::string>>& rows) {
  if (place.json) {
    for (const auto& row : rows) PrintJson(columns, row);
    return;
  }
  if (rows.empty()) return;
  std::vector<std::string> titles = columns;
  for (std::string& title : titles) {
    if (title.back() == '#') title.pop_back();
  }
  std::vector<std::size_t> widths(columns.size());
  for (std::size_t column = 0; column < columns.size(); ++column) {
    widths[column] = titles[column].size();
    for (const auto& row : rows) widths[column] = std::max(widths[column], row[column].size());
  }
  PrintText(titles, widths);
  for (const auto& row : rows) PrintText(row, widths);
}

Session Place::Open() const {
  // SQLite would create the file.
  if (database.empty() && !boost::filesystem::exists(Database())) {
    throw std::runtime_error("There is no database " + Database());
  }
  Session session(Database());
  CheckSchema(session);
  return session;
}

}  // namespace Norvik::Receiver
