#include "host/redaction/Replacements.h"

#include <arpa/inet.h>

#include <algorithm>
#include <boost/algorithm/hex.hpp>
#include <boost/algorithm/string/join.hpp>
#include <boost/algorithm/string/predicate.hpp>
#include <cstdio>
#include <iterator>

namespace Norvik::Host {

namespace {

constexpr std::size_t BEGINNING = 3;
constexpr std::size_t LONG_TEXT = 6;
constexpr std::size_t MAC_DIGITS = 12;
constexpr std::size_t UUID_DIGITS = 32;

// Not those of the C library, which depend on the locale.
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsUpper(char c) { return c >= 'A' && c <= 'Z'; }
bool IsLower(char c) { return c >= 'a' && c <= 'z'; }
char Lower(char c) { return IsUpper(c) ? static_cast<char>(c - 'A' + 'a') : c; }
char Upper(char c) { return IsLower(c) ? static_cast<char>(c - 'a' + 'A') : c; }
bool IsWordCharacter(char c) { return IsDigit(c) || IsLower(Lower(c)); }

std::string LowerText(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), Lower);
  return text;
}

std::uint32_t BeginningOf(const std::string& text, std::size_t at) {
  std::uint32_t beginning = 0;
  for (std::size_t next = at; next < at + BEGINNING; ++next) {
    beginning = beginning << 8 | static_cast<unsigned char>(text[next]);
  }
  return beginning;
}

/// The digits in groups of these lengths, with a separator between them.
std::string Grouped(const std::string& digits, const std::vector<std::size_t>& lengths,
                    const char* separator) {
  std::vector<std::string> groups;
  std::size_t at = 0;
  for (const std::size_t length : lengths) {
    groups.push_back(digits.substr(at, length));
    at += length;
  }
  return boost::join(groups, separator);
}

/// An address of the link layer without leading zeros in its parts.
std::string ShortMac(const std::string& digits) {
  std::string text;
  for (std::size_t at = 0; at < digits.size(); at += 2) {
    text += (at == 0 ? "" : ":") +
            digits.substr(digits[at] == '0' ? at + 1 : at, digits[at] == '0' ? 1 : 2);
  }
  return text;
}

/// The numbers of UTF-16; empty for a text that is no UTF-8.
std::vector<std::uint32_t> Utf16Of(const std::string& utf8) {
  std::vector<std::uint32_t> units;
  for (std::size_t at = 0; at < utf8.size();) {
    const auto byte = [&](std::size_t offset) {
      return at + offset < utf8.size() ? static_cast<unsigned char>(utf8[at + offset]) : 0u;
    };
    const std::uint32_t first = byte(0);
    if (first >= 0x80 && first < 0xC0) return {};
    const std::size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    std::uint32_t code = length == 1 ? first : first & (0xFFu >> (length + 1));
    for (std::size_t next = 1; next < length; ++next) code = code << 6 | (byte(next) & 0x3F);
    if (code > 0xFFFF) units.push_back(0xD7C0 + (code >> 10));
    units.push_back(code > 0xFFFF ? 0xDC00 | (code & 0x3FF) : code);
    at += length;
  }
  return units;
}

/// As a binary property list stores a text that is not ASCII.
std::string BigEndianOf(const std::string& text) {
  std::string bytes;
  for (const std::uint32_t unit : Utf16Of(text)) {
    bytes += static_cast<char>(unit >> 8);
    bytes += static_cast<char>(unit & 0xFF);
  }
  return bytes;
}

std::string LittleEndianOf(const std::string& text) {
  std::string bytes = BigEndianOf(text);
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) std::swap(bytes[at], bytes[at + 1]);
  return bytes;
}

std::string XmlOf(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    escaped += c == '&' ? "&amp;" : c == '<' ? "&lt;" : c == '>' ? "&gt;" : std::string(1, c);
  }
  return escaped;
}

/// In JSON, as it must be.
std::string QuotedOf(const std::string& text) {
  std::string escaped;
  for (const char c : text) escaped += (c == '"' || c == '\\' ? "\\" : "") + std::string(1, c);
  return escaped;
}

/// In JSON, if it is to be ASCII.
std::string EscapedOf(const std::string& text) {
  std::string escaped;
  for (const std::uint32_t unit : Utf16Of(text)) {
    char digits[8];
    std::snprintf(digits, sizeof(digits), "\\u%04x", unit);
    escaped += unit < 0x80 ? QuotedOf(std::string(1, static_cast<char>(unit))) : digits;
  }
  return escaped;
}

/// In a URI.
std::string PercentOf(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    char digits[4];
    std::snprintf(digits, sizeof(digits), "%%%02x",
                  static_cast<unsigned int>(static_cast<unsigned char>(c)));
    escaped += IsWordCharacter(c) || c == '-' || c == '.' || c == '_' ? std::string(1, c) : digits;
  }
  return escaped;
}

/// The ways to write a text besides the plain one.
constexpr std::string (*OTHER_FORMS[])(const std::string&) = {
    BigEndianOf, LittleEndianOf, XmlOf, QuotedOf, EscapedOf, PercentOf};

/// A UUID's bytes as SMBIOS has them: the first three fields with the low byte first.
std::string SmbiosOrder(std::string bytes) {
  const auto at = [&](std::ptrdiff_t offset) { return bytes.begin() + offset; };
  std::reverse(at(0), at(4));
  std::reverse(at(4), at(6));
  std::reverse(at(6), at(8));
  return bytes;
}

}  // namespace

Replacements::Replacements(const StandIns& standIns)
    : standIns_(standIns), beginnings_(std::size_t{1} << (8 * BEGINNING)) {}

void Replacements::AddPattern(const std::string& from, const std::string& to, Edge edge,
                              bool isExact) {
  if (from.size() < BEGINNING || from.size() != to.size() || from == to) return;
  const std::uint32_t beginning = BeginningOf(LowerText(from), 0);
  std::vector<Pattern>& patterns = patterns_[beginning];
  const auto place = std::find_if(patterns.begin(), patterns.end(), [&](const Pattern& known) {
    return known.from.size() < from.size();
  });
  patterns.insert(place, {from, to, edge, isExact});
  beginnings_[beginning] = true;
}

void Replacements::Protect(const std::string& text) {
  for (const char c : LowerText(text)) {
    if (IsWordCharacter(c)) protected_ += c;
    if (!IsWordCharacter(c) && protected_.back() != '\n') protected_ += '\n';
  }
  if (protected_.back() != '\n') protected_ += '\n';
}

void Replacements::AddText(const std::string& text) {
  const std::string from = LowerText(text);
  const std::string word = from.size() < LONG_TEXT ? "\n" + from + "\n" : from;
  if (protected_.find(word) != std::string::npos) return;
  const bool hasWord = std::any_of(from.begin(), from.end(), IsWordCharacter);
  if (from.size() < BEGINNING || !hasWord || !known_.insert(from).second) return;
  AddForms(from, LowerText(standIns_.OfText(text)));
}

void Replacements::AddPair(const std::string& text, const std::string& standIn) {
  if (known_.insert(LowerText(text)).second) AddForms(LowerText(text), LowerText(standIn));
}

void Replacements::AddForms(const std::string& from, const std::string& to) {
  AddPattern(from, to, from.size() < LONG_TEXT ? Edge::WORD : Edge::ANY);
  for (const auto form : OTHER_FORMS) {
    if (form(from) != from) AddPattern(form(from), form(to), Edge::ANY);
  }
}

void Replacements::AddHex(const std::string& text) {
  std::string from = LowerText(text);
  from.erase(std::remove_if(from.begin(), from.end(),
                            [](char c) { return c == ':' || c == '-' || c == '_'; }),
             from.end());
  const bool isHex = from.find_first_not_of("0123456789abcdef") == std::string::npos;
  // One digit all over is what machines have that were given no value.
  const bool isFilled = from.find_first_not_of(from.substr(0, 1)) == std::string::npos;
  if (isFilled) return;
  // A short identifier, as that of a volume, is a text.
  if (!isHex || from.size() < MAC_DIGITS || from.size() % 2 != 0) return AddText(text);
  if (!known_.insert(from).second) return;
  const std::string to = standIns_.OfHex(from);
  const auto add = [&](const std::vector<std::size_t>& lengths, const char* separator) {
    AddPattern(Grouped(from, lengths, separator), Grouped(to, lengths, separator), Edge::ANY);
  };
  add({from.size()}, "");
  for (const char* separator : {":", "-", "_"}) {
    if (from.size() == MAC_DIGITS) add({2, 2, 2, 2, 2, 2}, separator);
  }
  if (from.size() == MAC_DIGITS) AddPattern(ShortMac(from), ShortMac(to), Edge::ADDRESS);
  if (from.size() == UUID_DIGITS) add({8, 4, 4, 4, 12}, "-");
  const std::string bytes = boost::algorithm::unhex(from);
  const std::string newBytes = boost::algorithm::unhex(to);
  AddPattern(bytes, newBytes, Edge::ANY, true);
  if (from.size() != UUID_DIGITS) return;
  AddPattern(SmbiosOrder(bytes), SmbiosOrder(newBytes), Edge::ANY, true);
}

void Replacements::AddAddress(const std::string& text) {
  const std::string from = LowerText(text.substr(0, text.find('%')));
  in6_addr parsed{};
  const bool isIpv4 = ::inet_pton(AF_INET, from.c_str(), &parsed) == 1;
  const bool isIpv6 = ::inet_pton(AF_INET6, from.c_str(), &parsed) == 1;
  const bool isMixed = isIpv6 && from.find('.') != std::string::npos;
  const std::string to = standIns_.OfAddress(from);
  if ((!isIpv4 && !isIpv6) || isMixed || !known_.insert(from).second || from == to) return;
  AddPattern(from, to, isIpv4 ? Edge::WORD : Edge::ADDRESS);
  if (isIpv6) return;
  // A network is written by its first three parts, if these are more than its range.
  AddPattern(from.substr(0, from.rfind('.')), to.substr(0, to.rfind('.')), Edge::WORD);
}

void Replacements::AddNumber(const std::string& digits, const std::string& replacement) {
  if (!known_.insert(digits).second) return;
  AddPattern(digits, replacement, Edge::WORD);
}

void Replacements::AddNumber(const std::string& digits) {
  AddNumber(digits, digits.substr(0, 1) + standIns_.OfText(digits.substr(1)));
}

bool Replacements::Has(const std::string& text) const { return known_.count(LowerText(text)) != 0; }

const Replacements::Pattern* Replacements::MatchAt(const std::string& bytes,
                                                   const std::string& lower, std::size_t at) const {
  const std::uint32_t beginning = BeginningOf(lower, at);
  if (!beginnings_[beginning]) return nullptr;
  const auto isEdge = [&](std::size_t outside, Edge edge) {
    if (edge == Edge::ANY || outside >= bytes.size()) return true;
    const bool isColon = edge == Edge::ADDRESS && bytes[outside] == ':';
    return !isColon && !IsWordCharacter(bytes[outside]);
  };
  for (const Pattern& pattern : patterns_.at(beginning)) {
    const std::string& text = pattern.isExact ? bytes : lower;
    if (text.compare(at, pattern.from.size(), pattern.from) != 0) continue;
    // A word ends at its own last character: "ana@" ends anywhere.
    const bool endsItself = pattern.edge == Edge::WORD && !IsWordCharacter(pattern.from.back());
    // Before the beginning the position wraps, which is outside as well.
    if (isEdge(at - 1, pattern.edge) &&
        (endsItself || isEdge(at + pattern.from.size(), pattern.edge))) {
      return &pattern;
    }
  }
  return nullptr;
}

std::string Replacements::Apply(const std::string& bytes) const {
  const std::string lower = LowerText(bytes);
  std::string result = bytes;
  for (std::size_t at = 0; at + BEGINNING <= bytes.size();) {
    const Pattern* const found = MatchAt(bytes, lower, at);
    if (!found) {
      ++at;
      continue;
    }
    for (std::size_t next = 0; next < found->to.size(); ++next) {
      const char to = found->to[next];
      result[at + next] = !found->isExact && IsUpper(bytes[at + next]) ? Upper(to) : to;
    }
    at += found->to.size();
  }
  return result;
}

}  // namespace Norvik::Host
