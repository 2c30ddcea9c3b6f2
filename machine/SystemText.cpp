#include "machine/SystemText.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <sstream>

#include "common/text/Text.h"

namespace Norvik::Machine {

using Common::trim_copy;

std::uint64_t LeadingNumber(const std::string& text) {
  std::uint64_t number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  return result.ec == std::errc() ? number : 0;
}

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(std::move(line));
  return lines;
}

std::vector<std::string> WordsOf(const std::string& text) {
  std::vector<std::string> words;
  std::istringstream stream(text);
  for (std::string word; stream >> word;) words.push_back(std::move(word));
  return words;
}

std::vector<Entries> ParseParagraphs(const std::string& text, char separator) {
  std::vector<Entries> paragraphs;
  bool open = false;
  for (const auto& line : LinesOf(text)) {
    if (trim_copy(line).empty()) open = false;
    const auto position = line.find(separator);
    if (position == std::string::npos) continue;
    if (!open) paragraphs.emplace_back();
    open = true;
    paragraphs.back().emplace(trim_copy(line.substr(0, position)),
                              trim_copy(line.substr(position + 1)));
  }
  return paragraphs;
}

Entries ParseEntries(const std::string& text, char separator) {
  Entries entries;
  for (auto& paragraph : ParseParagraphs(text, separator)) {
    entries.insert(paragraph.begin(), paragraph.end());
  }
  return entries;
}

std::string ValueOf(const Entries& entries, const std::string& key) {
  const auto found = entries.find(key);
  return found == entries.end() ? std::string() : found->second;
}

std::string WithoutQuotes(const std::string& text) {
  const bool quoted = text.size() >= 2 && (text.front() == '"' || text.front() == '\'') &&
                      text.front() == text.back();
  return quoted ? text.substr(1, text.size() - 2) : text;
}

std::string WithoutKeywords(const std::string& locale) {
  return locale.substr(0, locale.find('@'));
}

std::string PlainMacAddress(const std::string& text) {
  std::string address;
  for (const char c : text) {
    if (c == ':') continue;
    if (!std::isxdigit(static_cast<unsigned char>(c))) return {};
    address += c;
  }
  return address.size() == 12 ? Common::ToUpper(address) : std::string();
}

}  // namespace Norvik::Machine
