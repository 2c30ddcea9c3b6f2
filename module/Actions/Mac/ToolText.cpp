#include "module/Actions/Mac/ToolText.h"

#include <algorithm>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <iomanip>
#include <iterator>
#include <locale>
#include <sstream>
#include <string_view>

#include "common/log/Logger.h"
#include "common/text/Text.h"
#include "json/Utf8.h"

namespace Norvik::KOB {

namespace {

using Row = Common::ActionResponseTable::Row;

constexpr char FIRST_HEADING[] = "Active Internet connections (including servers)";
constexpr const char* END_HEADINGS[] = {
    "Active Multipath Internet connections", "Registered kernel control modules",
    "Active kernel event sockets", "Active kernel control sockets"};
constexpr std::size_t FEWEST_WORDS = 5;

bool Contains(std::string_view line, const char* text) {
  return line.find(text) != std::string_view::npos;
}

bool EndsSection(std::string_view line) {
  return std::any_of(std::begin(END_HEADINGS), std::end(END_HEADINGS),
                     [&](const char* heading) { return Contains(line, heading); });
}

/// The words of a line. Only blanks separate words, no other white space.
void SplitWords(std::string_view line, std::vector<std::string_view>& words) {
  words.clear();
  for (std::size_t at = line.find_first_not_of(' '); at < line.size();) {
    const std::size_t end = std::min(line.find(' ', at), line.size());
    words.push_back(line.substr(at, end - at));
    at = line.find_first_not_of(' ', end);
  }
}

/// The line with single blanks.
std::string WithSingleBlanks(std::string_view line) {
  std::string result;
  result.reserve(line.size());
  for (std::size_t at = 0; at < line.size();) {
    const std::size_t blank = std::min(line.find(' ', at), line.size() - 1);
    result.append(line, at, blank + 1 - at);
    at = line[blank] == ' ' ? line.find_first_not_of(' ', blank) : line.size();
  }
  return result;
}

/// The line that begins at a position, without its line end; empty after the end of the text.
std::string_view LineAt(std::string_view text, std::size_t at) {
  return at < text.size() ? text.substr(at, text.find('\n', at) - at) : std::string_view();
}

/// Appends address and port. A word without a dot is a port alone.
void AddEndpoint(std::string_view word, Row& cells) {
  const auto dot = word.rfind('.');
  cells.emplace_back(std::string(dot == std::string_view::npos ? "" : word.substr(0, dot)));
  cells.emplace_back(std::string(word.substr(dot + 1)));
}

Row ConnectionOf(const std::vector<std::string_view>& words) {
  Row cells;
  cells.reserve(8);
  cells.emplace_back(std::string(words[0]));
  AddEndpoint(words[3], cells);
  AddEndpoint(words[4], cells);
  if (words.size() > FEWEST_WORDS) cells.emplace_back(std::string(words[5]));
  // Deliberately the protocol in place of the names of the ports: servers expect it.
  for (int name = 0; name < 2; ++name) cells.emplace_back(std::string(words[0]));
  return cells;
}

}  // namespace

std::vector<Row> ReadConnections(const std::string& output) {
  std::vector<Row> connections;
  if (!json::IsUtf8(output)) return connections;
  std::vector<std::string_view> words;
  bool inSection = false;
  // A trailing newline yields one empty last line.
  for (std::size_t at = 0; at <= output.size();) {
    const std::string_view line = LineAt(output, at);
    at += line.size() + 1;
    if (!inSection) {
      inSection = Contains(line, FIRST_HEADING);
      if (inSection) at += LineAt(output, at).size() + 1;  // the titles of the columns
      continue;
    }
    if (EndsSection(line)) break;
    SplitWords(line, words);
    if (words.size() < FEWEST_WORDS) {
      NORVIK_DETAIL("Error in netstat parser");
      continue;
    }
    connections.push_back(ConnectionOf(words));
    NORVIK_DETAIL(WithSingleBlanks(line));
  }
  return connections;
}

std::string ReadProcessorShare(const std::string& output) {
  const auto heading = output.find('\n');
  if (heading == std::string::npos || Common::EncodeUtf8Characters(output) != output) return "100";
  std::string share = output.substr(heading + 1, output.find('\n', heading + 1) - heading - 1);
  const auto isBlank = [](char c) { return std::string(" \t\v\f\r").find(c) != std::string::npos; };
  share.erase(std::remove_if(share.begin(), share.end(), isBlank), share.end());
  return share;
}

std::string PercentText(unsigned long long part, long long whole) {
  if (whole < 1) return "0";
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text << std::fixed << std::setprecision(2)
       << static_cast<double>(part) / static_cast<double>(whole) * 100;
  return text.str();
}

std::string WithoutShare(const std::string& listing, const std::string& name) {
  constexpr char START[] = "name:";
  std::istringstream lines(listing);
  std::string rest;
  bool isShare = false;
  for (std::string line; std::getline(lines, line);) {
    if (boost::starts_with(line, START)) {
      isShare = boost::trim_copy(line.substr(sizeof(START) - 1)) == name;
    }
    if (!isShare) rest += line + "\n";
  }
  return rest;
}

}  // namespace Norvik::KOB
