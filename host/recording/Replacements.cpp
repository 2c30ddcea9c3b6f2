#include "host/recording/Replacements.h"

#include <arpa/inet.h>
#include <sodium.h>

#include <algorithm>
#include <boost/algorithm/hex.hpp>
#include <boost/algorithm/string/join.hpp>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/split.hpp>
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

char RandomFrom(char first, unsigned int count) {
  return static_cast<char>(first + static_cast<char>(::randombytes_uniform(count)));
}

std::uint32_t BeginningOf(const std::string& text, std::size_t at) {
  std::uint32_t beginning = 0;
  for (std::size_t next = at; next < at + BEGINNING; ++next) {
    beginning = beginning << 8 | static_cast<unsigned char>(text[next]);
  }
  return beginning;
}

std::vector<std::string> PartsOf(const std::string& text, char separator) {
  std::vector<std::string> parts;
  return boost::split(parts, text, [=](char c) { return c == separator; });
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

/// As a binary property list stores a text that is not ASCII; empty beyond the basic plane.
std::string Utf16Of(const std::string& utf8) {
  std::string wide;
  for (std::size_t at = 0; at < utf8.size();) {
    const auto byte = [&](std::size_t offset) {
      return at + offset < utf8.size() ? static_cast<unsigned char>(utf8[at + offset]) : 0u;
    };
    const unsigned int first = byte(0);
    if (first >= 0xF0 || (first >= 0x80 && first < 0xC0)) return {};
    const std::size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : 3;
    unsigned int character = first;
    if (length == 2) character = (first & 0x1F) << 6 | (byte(1) & 0x3F);
    if (length == 3) character = (first & 0x0F) << 12 | (byte(1) & 0x3F) << 6 | (byte(2) & 0x3F);
    wide += static_cast<char>(character >> 8);
    wide += static_cast<char>(character & 0xFF);
    at += length;
  }
  return wide;
}

std::string XmlOf(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    escaped += c == '&' ? "&amp;" : c == '<' ? "&lt;" : c == '>' ? "&gt;" : std::string(1, c);
  }
  return escaped;
}

/// A part of an IPv4 address with this number of digits.
std::string OtherNumber(std::size_t digits) {
  const std::uint32_t least = digits == 1 ? 1 : digits == 2 ? 10 : 100;
  const std::uint32_t count = digits == 1 ? 9 : digits == 2 ? 90 : 100;
  return std::to_string(least + ::randombytes_uniform(count));
}

/// A group of an IPv6 address, whose zeros stay.
std::string OtherGroup(std::string group) {
  for (char& c : group) {
    if (IsDigit(c) && c != '0') c = RandomFrom('1', 9);
    if (IsLower(c)) c = RandomFrom('a', 6);
  }
  return group;
}

/// A UUID's bytes as SMBIOS has them: the first three fields with the low byte first.
std::string SmbiosOrder(std::string bytes) {
  const auto at = [&](std::ptrdiff_t offset) { return bytes.begin() + offset; };
  std::reverse(at(0), at(4));
  std::reverse(at(4), at(6));
  std::reverse(at(6), at(8));
  return bytes;
}

}  // namespace

Replacements::Replacements() : beginnings_(std::size_t{1} << (8 * BEGINNING)) {}

std::string Replacements::Substitute(const std::string& text, bool keepsZeros) {
  const bool isHex = text.find_first_not_of("0123456789abcdef-:") == std::string::npos;
  std::string replacement;
  // Short values may run out of replacements that nothing else has.
  for (int attempt = 0; attempt < 1000; ++attempt) {
    replacement = text;
    for (char& c : replacement) {
      const bool isZero = c == '0';
      if (IsDigit(c) && keepsZeros && !isZero) c = RandomFrom('1', 9);
      if (IsDigit(c) && !keepsZeros) c = RandomFrom('0', 10);
      if (IsLower(c)) c = RandomFrom('a', isHex ? 6 : 26);
    }
    if (replacement != text && used_.count(replacement) == 0) break;
  }
  used_.insert(replacement);
  return replacement;
}

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
  const std::string to = Substitute(from, false);
  AddPattern(from, to, from.size() < LONG_TEXT ? Edge::WORD : Edge::ANY);
  AddPattern(Utf16Of(from), Utf16Of(to), Edge::ANY);
  if (XmlOf(from) != from) AddPattern(XmlOf(from), XmlOf(to), Edge::ANY);
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
  const std::string to = Substitute(from, true);
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

std::string Replacements::SubstitutePart(const std::string& before, const std::string& part) {
  const auto [place, isNew] = parts_.emplace(before + part, part);
  if (!isNew) return place->second;
  for (int attempt = 0; attempt < 1000; ++attempt) {
    const bool isIpv4 = before.find(':') == std::string::npos;
    const std::string to = isIpv4 ? OtherNumber(part.size()) : OtherGroup(part);
    if (to == part || !used_.insert(before + to).second) continue;
    place->second = to;
    break;
  }
  return place->second;
}

void Replacements::AddIpv4(const std::string& text) {
  const auto parts = PartsOf(text, '.');
  const int first = std::stoi(parts[0]);
  if (first == 0 || first == 127 || first >= 224) return;
  // The networks that anyone may use stay what they are.
  const bool keepsTwo =
      boost::starts_with(text, "192.168.") || boost::starts_with(text, "169.254.") || first == 172;
  std::string before = parts[0];
  std::string to = parts[0];
  for (std::size_t at = 1; at < parts.size(); ++at) {
    const bool keeps = (at == 1 && keepsTwo) || parts[at] == "0" || parts[at] == "255";
    const std::string part = keeps ? parts[at] : SubstitutePart(before + ".", parts[at]);
    before += "." + parts[at];
    to += "." + part;
    // A network is written by its first three parts.
    if (at == 2) AddPattern(before, to, Edge::WORD);
  }
  AddPattern(before, to, Edge::WORD);
}

void Replacements::AddIpv6(const std::string& text) {
  if (boost::starts_with(text, "::") || boost::starts_with(text, "ff")) return;
  const auto parts = PartsOf(text, ':');
  std::string before = parts[0] + ":";
  std::string to = parts[0];
  for (std::size_t at = 1; at < parts.size(); ++at) {
    to += ":" + (parts[at].empty() ? "" : SubstitutePart(before, parts[at]));
    before += parts[at] + ":";
  }
  AddPattern(text, to, Edge::ADDRESS);
}

void Replacements::AddAddress(const std::string& text) {
  const std::string from = LowerText(text.substr(0, text.find('%')));
  in6_addr parsed{};
  const bool isIpv4 = ::inet_pton(AF_INET, from.c_str(), &parsed) == 1;
  const bool isIpv6 = ::inet_pton(AF_INET6, from.c_str(), &parsed) == 1;
  const bool isMixed = isIpv6 && from.find('.') != std::string::npos;
  if ((!isIpv4 && !isIpv6) || isMixed || !known_.insert(from).second) return;
  isIpv4 ? AddIpv4(from) : AddIpv6(from);
}

void Replacements::AddNumber(const std::string& digits, const std::string& replacement) {
  if (!known_.insert(digits).second) return;
  AddPattern(digits, replacement, Edge::WORD);
}

void Replacements::AddNumber(const std::string& digits) {
  AddNumber(digits, digits.substr(0, 1) + Substitute(digits.substr(1), false));
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
    // Before the beginning the position wraps, which is outside as well.
    if (isEdge(at - 1, pattern.edge) && isEdge(at + pattern.from.size(), pattern.edge)) {
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
