#include "module/Actions/Mac/ToolText.h"

#include <algorithm>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <iomanip>
#include <locale>
#include <sstream>

#include "common/log/Logger.h"
#include "common/text/Text.h"

namespace Norvik::KOB {

namespace {

constexpr char FIRST_HEADING[] = "Active Internet connections (including servers)";
constexpr const char* END_HEADINGS[] = {
    "Active Multipath Internet connections", "Registered kernel control modules",
    "Active kernel event sockets", "Active kernel control sockets"};
constexpr std::size_t FEWEST_WORDS = 5;

bool Contains(const std::string& line, const char* text) {
  return line.find(text) != std::string::npos;
}

bool EndsSection(const std::string& line) {
  return std::any_of(std::begin(END_HEADINGS), std::end(END_HEADINGS),
                     [&](const char* heading) { return Contains(line, heading); });
}

/// The line with single blanks. Only blanks separate words, no other white space.
std::string WithSingleBlanks(std::string line) {
  const auto areBlank = [](char left, char right) { return left == ' ' && right == ' '; };
  line.erase(std::unique(line.begin(), line.end(), areBlank), line.end());
  return line;
}

std::vector<std::string> WordsOf(const std::string& line) {
  std::vector<std::string> words;
  std::istringstream stream(line);
  for (std::string word; std::getline(stream, word, ' ');) {
    if (!word.empty()) words.push_back(word);
  }
  return words;
}

/// Appends address and port. A word without a dot is a port alone.
void AddEndpoint(const std::string& word, std::vector<std::string>& cells) {
  const auto dot = word.rfind('.');
  cells.push_back(dot == std::string::npos ? "" : word.substr(0, dot));
  cells.push_back(word.substr(dot + 1));
}

std::vector<std::string> ConnectionOf(const std::vector<std::string>& words) {
  std::vector<std::string> cells = {words[0]};
  AddEndpoint(words[3], cells);
  AddEndpoint(words[4], cells);
  if (words.size() > FEWEST_WORDS) cells.push_back(words[5]);
  // Deliberately the protocol in place of the names of the ports: servers expect it.
  cells.insert(cells.end(), 2, words[0]);
  return cells;
}

}  // namespace

std::vector<std::vector<std::string>> ReadConnections(const std::string& output) {
  std::vector<std::vector<std::string>> connections;
  if (Common::EncodeUtf8Characters(output) != output) return connections;
  // A trailing newline yields one empty last line.
  std::istringstream lines(output + "\n");
  bool inSection = false;
  for (std::string line; std::getline(lines, line);) {
    if (!inSection) {
      inSection = Contains(line, FIRST_HEADING);
      if (inSection) std::getline(lines, line);  // the titles of the columns
      continue;
    }
    if (EndsSection(line)) break;
    line = WithSingleBlanks(line);
    const auto words = WordsOf(line);
    if (words.size() < FEWEST_WORDS) {
      NORVIK_DETAIL("Error in netstat parser");
      continue;
    }
    connections.push_back(ConnectionOf(words));
    NORVIK_DETAIL(line);
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
