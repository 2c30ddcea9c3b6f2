#include "host/redaction/ValueRedaction.h"

#include <algorithm>
#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/join.hpp>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/split.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <cctype>
#include <cstddef>
#include <initializer_list>
#include <locale>
#include <string_view>
#include <utility>
#include <vector>

#include "host/redaction/EncodedBytes.h"
#include "host/redaction/SensitiveForms.h"

namespace Norvik::Host {

namespace {

using Kind = SensitiveKind;

bool IsOneOf(std::string_view text, std::initializer_list<std::string_view> list) {
  return std::find(list.begin(), list.end(), text) != list.end();
}

std::vector<std::string> Split(const std::string& text, const char* separators) {
  std::vector<std::string> parts;
  return boost::split(parts, text, boost::is_any_of(separators));
}

/// What firmware has in place of a number.
bool IsNoSerial(const std::string& value) {
  const std::string lower = boost::to_lower_copy(value, std::locale::classic());
  return value.find_first_not_of('0') == std::string::npos || value == "2147483647" ||
         IsOneOf(lower, {"none", "unknown", "n/a", "not specified", "not available",
                         "default string", "to be filled by o.e.m.", "system serial number",
                         "chassis serial number", "no asset tag", "no asset information"});
}

std::string RedactedHex(const std::string& text, const StandIns& standIns) {
  const auto isDigit = [](char c) { return IsHexDigit(c); };
  const auto digits = std::count_if(text.begin(), text.end(), isDigit);
  const bool isHex = std::all_of(text.begin(), text.end(), [&](char c) {
    return isDigit(c) || c == ':' || c == '-' || c == '_';
  });
  return isHex && digits >= 12 && digits % 2 == 0 ? standIns.OfHex(text) : standIns.OfText(text);
}

/// A name or an address, perhaps with a port or a path after it.
std::string RedactedPlainHost(const std::string& text, const StandIns& standIns) {
  std::string address = standIns.OfAddress(text);
  if (address != text || std::count(text.begin(), text.end(), ':') > 1) return address;
  const auto end = std::min(text.find_first_of(":/"), text.size());
  const std::string host = text.substr(0, end);
  const std::string rest = text.substr(end);
  const bool isPort = rest.find_first_not_of(":0123456789") == std::string::npos;
  const std::string after = isPort ? rest : standIns.OfText(rest);
  if (IsCommonName(host.substr(0, host.find('.')))) return host + after;
  const bool isNumber = host.find_first_not_of("0123456789.") == std::string::npos;
  const std::string number = isNumber ? standIns.OfAddress(host) : host;
  // A mask stays; any other number is a name.
  const bool isName = number == host && std::count(host.begin(), host.end(), '.') != 3;
  return (isNumber && !isName ? number : standIns.OfHost(host)) + after;
}

std::string RedactedUri(const std::string& uri, const StandIns& standIns);

/// Around it may be the blanks and the line end of a tool.
std::string RedactedHost(const std::string& text, const StandIns& standIns) {
  if (text.find("//") != std::string::npos) return RedactedUri(text, standIns);
  const std::string value = boost::trim_copy(text);
  const auto begin = text.find(value);
  return text.substr(0, begin) + RedactedPlainHost(value, standIns) +
         text.substr(begin + value.size());
}

/// One on each line.
std::string RedactedDomains(const std::string& text, const StandIns& standIns) {
  std::vector<std::string> lines = Split(text, "\n");
  for (std::string& line : lines) {
    if (line.find('.') != std::string::npos) line = standIns.OfText(line);
  }
  return boost::join(lines, "\n");
}

std::string RedactedName(const std::string& text, const StandIns& standIns) {
  return IsCommonName(boost::trim_copy(text)) ? text : standIns.OfWords(text);
}

/// A part of a URI, with its escapes.
std::string RedactedUriPart(const std::string& part, const StandIns& standIns) {
  return ToPercent(standIns.OfText(FromPercent(part)));
}

std::string RedactedAuthority(const std::string& authority, const StandIns& standIns) {
  const auto sign = authority.rfind('@');
  std::string result;
  if (sign != std::string::npos) {
    std::vector<std::string> users = Split(authority.substr(0, sign), ":;");
    for (std::string& user : users) {
      if (!IsCommonName(user)) user = RedactedUriPart(user, standIns);
    }
    result = boost::join(users, ":") + "@";
  }
  const std::string host = authority.substr(sign == std::string::npos ? 0 : sign + 1);
  // The name of a service is followed by its type.
  const auto type = std::min(host.find("._"), host.size());
  const bool hasEscapes = host.find('%') < type;
  return result +
         (hasEscapes ? RedactedUriPart(host.substr(0, type), standIns)
                     : RedactedHost(host.substr(0, type), standIns)) +
         host.substr(type);
}

std::string RedactedUri(const std::string& uri, const StandIns& standIns) {
  const auto slashes = uri.find("//");
  if (slashes == std::string::npos) {
    const auto colon = uri.find(':');
    const std::size_t begin = colon == std::string::npos ? 0 : colon + 1;
    return uri.substr(0, begin) + standIns.OfText(uri.substr(begin));
  }
  const auto end = std::min(uri.find_first_of("/?", slashes + 2), uri.size());
  const auto query = std::min(uri.find('?', end), uri.size());
  std::vector<std::string> parts = Split(uri.substr(end, query - end), "/");
  for (std::string& part : parts) part = RedactedUriPart(part, standIns);
  std::string result = uri.substr(0, slashes + 2) +
                       RedactedAuthority(uri.substr(slashes + 2, end - slashes - 2), standIns) +
                       boost::join(parts, "/");
  if (query == uri.size()) return result;
  std::vector<std::string> settings = Split(uri.substr(query + 1), "&");
  for (std::string& setting : settings) {
    const auto sign = setting.find('=');
    const std::size_t begin = sign == std::string::npos ? 0 : sign + 1;
    const std::string value = setting.substr(begin);
    const bool isEscaped = value.find('%') != std::string::npos;
    setting = setting.substr(0, begin) +
              (isEscaped ? RedactedUriPart(value, standIns) : RedactedHex(value, standIns));
  }
  return result + "?" + boost::join(settings, "&");
}

using Pairs = std::vector<std::pair<std::string, std::string>>;

bool IsWordByte(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) != 0 && static_cast<unsigned char>(c) < 0x80;
}

/// Replaces what the pairs begin with, the longest first; short ones as whole words only.
std::string Substituted(const std::string& text, Pairs pairs) {
  constexpr std::size_t LONG_TEXT = 6;
  std::sort(pairs.begin(), pairs.end(), [](const auto& left, const auto& right) {
    return left.first.size() > right.first.size();
  });
  const auto isAt = [&](const std::string& from, std::size_t at) {
    if (from.empty() || text.compare(at, from.size(), from) != 0) return false;
    if (from.size() >= LONG_TEXT) return true;
    const std::size_t end = at + from.size();
    return (at == 0 || !IsWordByte(text[at - 1])) &&
           (end == text.size() || !IsWordByte(from.back()) || !IsWordByte(text[end]));
  };
  std::string result;
  for (std::size_t at = 0; at < text.size();) {
    const auto found = std::find_if(pairs.begin(), pairs.end(),
                                    [&](const auto& pair) { return isAt(pair.first, at); });
    result += found == pairs.end() ? text.substr(at, 1) : found->second;
    at += found == pairs.end() ? 1 : found->first.size();
  }
  return result;
}

/// What has a form is no part of a large table: there may be any number of them.
std::string RedactedWords(const std::string& text, const Replacements& replacements) {
  Pairs pairs;
  ForEachForm(text, [&](Kind kind, const std::string& value) {
    pairs.emplace_back(value, RedactedValue(kind, value, replacements));
  });
  return replacements.Apply(pairs.empty() ? text : Substituted(text, std::move(pairs)));
}

/// Folders that every user has.
bool IsUsualFolder(const std::string& name) {
  return IsOneOf(name, {"",
                        ".",
                        "..",
                        "Applications",
                        "Desktop",
                        "Documents",
                        "Downloads",
                        "Library",
                        "Movies",
                        "Music",
                        "Pictures",
                        "Public",
                        "Sites",
                        "Caches",
                        "Logs",
                        "Preferences",
                        "Application Support",
                        "Containers",
                        "Contents",
                        "MacOS",
                        "Resources",
                        ".Trash",
                        ".cache",
                        ".config",
                        ".local",
                        ".ssh"});
}

}  // namespace

std::string RedactedFileName(const std::string& name, const StandIns& standIns) {
  constexpr std::size_t LONGEST_EXTENSION = 6;
  const auto dot = name.rfind('.');
  const bool hasExtension =
      dot != std::string::npos && dot > 0 && name.size() - dot <= LONGEST_EXTENSION;
  const std::size_t end = hasExtension ? dot : name.size();
  return standIns.OfText(name.substr(0, end)) + name.substr(end);
}

std::string RedactedPath(const std::string& path, const Replacements& replacements,
                         bool* isPersonal) {
  const StandIns& standIns = replacements.GetStandIns();
  std::vector<std::string> parts = Split(path, "/");
  bool isBelow = false;
  std::string before;
  for (std::string& part : parts) {
    const std::string name = part;
    if (IsOneOf(before, {"Users", "home"}) && !name.empty()) {
      if (!IsOneOf(name, {"Shared", "Guest"})) part = RedactedName(name, standIns);
      isBelow = true;
    } else if (IsOneOf(before, {"Volumes", "media", "mnt"}) && !isBelow) {
      part = RedactedValue(Kind::LABEL, name, replacements);
      isBelow = part != name;
    } else if (isBelow && isPersonal != nullptr) {
      if (!IsUsualFolder(name)) part = RedactedFileName(name, standIns);
    } else {
      part = RedactedWords(name, replacements);
    }
    before = name;
  }
  if (isPersonal != nullptr) *isPersonal = isBelow;
  return boost::join(parts, "/");
}

std::string RedactedValue(SensitiveKind kind, const std::string& text,
                          const Replacements& replacements) {
  const StandIns& standIns = replacements.GetStandIns();
  switch (kind) {
    case Kind::SERIAL:
      return IsNoSerial(boost::trim_copy(text)) ? text : standIns.OfText(text);
    case Kind::NAME:
      return RedactedName(text, standIns);
    case Kind::HOST:
      return RedactedHost(text, standIns);
    case Kind::SEARCH_DOMAIN:
      return RedactedDomains(text, standIns);
    case Kind::HEX:
      return RedactedHex(text, standIns);
    case Kind::ADDRESS:
      return RedactedHost(text, standIns);
    case Kind::SECRET:
    case Kind::TEXT:
      return standIns.OfText(text);
    case Kind::LABEL:
      return IsCommonVolume(boost::trim_copy(text)) ? text : standIns.OfText(text);
    case Kind::URI:
      return RedactedUri(text, standIns);
    case Kind::PATH:
      return RedactedPath(text, replacements, nullptr);
    case Kind::WORDS:
      return RedactedWords(text, replacements);
    case Kind::TITLE:
      return replacements.Apply(text);
    case Kind::POSITION:
    case Kind::HARMLESS:
      break;
  }
  return text;
}

}  // namespace Norvik::Host
