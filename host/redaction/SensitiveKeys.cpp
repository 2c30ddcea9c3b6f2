#include "host/redaction/SensitiveKeys.h"

#include <algorithm>
#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <cstddef>
#include <iterator>
#include <locale>
#include <optional>
#include <set>
#include <sstream>
#include <string_view>

#include "host/PropertyListJson.h"
#include "host/redaction/EncodedBytes.h"
#include "host/redaction/SensitiveForms.h"
#include "host/redaction/SensitiveKind.h"

namespace Norvik::Host {

namespace {

using nlohmann::json;

struct KnownKey {
  std::string_view word;  ///< in lower case, letters and digits only
  bool isWhole;           ///< not a part of the key
  SensitiveKind kind;
};

constexpr KnownKey KEYS[] = {
    {"serial", false, SensitiveKind::SERIAL},        {"uniquechipid", true, SensitiveKind::SERIAL},
    {"ecid", true, SensitiveKind::SERIAL},           {"udid", true, SensitiveKind::SERIAL},
    {"imei", true, SensitiveKind::SERIAL},           {"meid", true, SensitiveKind::SERIAL},
    {"iccid", true, SensitiveKind::SERIAL},          {"password", false, SensitiveKind::SECRET},
    {"passwd", false, SensitiveKind::SECRET},        {"passphrase", false, SensitiveKind::SECRET},
    {"secret", false, SensitiveKind::SECRET},        {"token", false, SensitiveKind::SECRET},
    {"privatekey", false, SensitiveKind::SECRET},    {"apikey", false, SensitiveKind::SECRET},
    {"accesskey", false, SensitiveKind::SECRET},     {"ssid", true, SensitiveKind::TEXT},
    {"ssidstr", true, SensitiveKind::TEXT},          {"io80211ssid", true, SensitiveKind::TEXT},
    {"macaddress", false, SensitiveKind::HEX},       {"username", true, SensitiveKind::NAME},
    {"authorization", false, SensitiveKind::SECRET}, {"bearer", true, SensitiveKind::SECRET},
    {"cookie", false, SensitiveKind::SECRET},        {"credential", false, SensitiveKind::SECRET},
    {"proxyuser", true, SensitiveKind::NAME},        {"hostname", true, SensitiveKind::HOST},
    {"assettag", true, SensitiveKind::SERIAL},
};

// A line may be a whole file.
constexpr std::size_t LONGEST_KEY = 128;
constexpr std::size_t LONGEST_VALUE = 4096;

}  // namespace

std::optional<SensitiveKind> KindOfKey(std::string key) {
  boost::to_lower(key, std::locale::classic());
  key.erase(std::remove_if(key.begin(), key.end(), boost::is_any_of("-_ \t")), key.end());
  const auto found = std::find_if(std::begin(KEYS), std::end(KEYS), [&](const KnownKey& known) {
    return known.isWhole ? key == known.word : key.find(known.word) != std::string::npos;
  });
  if (found == std::end(KEYS)) return {};
  return found->kind;
}

namespace {

void AddKeyedText(const std::string& key, const std::string& value, Replacements& replacements) {
  const auto kind = KindOfKey(key);
  if (!kind) return;
  const bool hasDigit = value.find_first_of("0123456789") != std::string::npos;
  if (*kind != SensitiveKind::SERIAL || hasDigit) AddSensitive(*kind, value, replacements);
}

/// Bytes are a text with zeros after it, a property list, or a number.
void AddKeyedData(const std::string& key, const std::string& bytes, Replacements& replacements) {
  const std::string text = boost::trim_right_copy_if(bytes, [](char c) { return c == '\0'; });
  if (IsText(text)) {
    AddKeyedText(key, text, replacements);
    AddForms(text, replacements);
  } else if (IsPropertyList(bytes)) {
    AddKeyedValues(bytes, replacements);
  } else if (KindOfKey(key)) {
    // Bytes that are mostly zero are found everywhere.
    constexpr std::ptrdiff_t LEAST = 3;
    const auto zeros = std::count(bytes.begin(), bytes.end(), '\0');
    const auto size = static_cast<std::ptrdiff_t>(bytes.size());
    if (size - zeros >= LEAST && zeros <= size / 2) replacements.AddHex(ToHex(bytes, ""));
  }
}

void AddKeyedNumber(const std::string& key, const std::string& digits, Replacements& replacements) {
  constexpr std::size_t LEAST = 6;
  if (KindOfKey(key) == SensitiveKind::SERIAL && digits.size() >= LEAST) {
    replacements.AddNumber(digits);
  }
}

/// The text between two others, after a position that is moved past it; empty if it is not there.
std::string Between(const std::string& text, std::string_view begin, std::string_view end,
                    std::size_t& at) {
  const auto first = text.find(begin, at);
  const auto last = first == std::string::npos ? first : text.find(end, first + begin.size());
  at = last == std::string::npos ? last : last + end.size();
  if (at == std::string::npos) return {};
  return text.substr(first + begin.size(), last - first - begin.size());
}

/// "--token" and the word after it.
bool IsSecretOption(const std::string& word) {
  return boost::starts_with(word, "-") && word.find('=') == std::string::npos &&
         KindOfKey(word) == SensitiveKind::SECRET;
}

/// An element of an XML property list after a key or an option.
void AddElement(const std::string& key, const std::string& text, std::size_t at,
                Replacements& replacements) {
  const std::size_t value = text.find_first_not_of(" \t\r\n", at);
  if (value == std::string::npos) return;
  std::size_t end = value;
  if (text.compare(value, 8, "<string>") == 0) {
    AddKeyedText(key, Between(text, "<string>", "</string>", end), replacements);
  } else if (text.compare(value, 6, "<data>") == 0) {
    AddKeyedData(key, FromBase64(Between(text, "<data>", "</data>", end)), replacements);
  } else if (text.compare(value, 9, "<integer>") == 0) {
    AddKeyedNumber(key, Between(text, "<integer>", "</integer>", end), replacements);
  }
}

/// By its text: a damaged one is read as well.
void AddXmlElements(const std::string& text, Replacements& replacements) {
  for (std::size_t at = 0; at != std::string::npos;) {
    const std::string key = Between(text, "<key>", "</key>", at);
    if (at != std::string::npos) AddElement(key, text, at, replacements);
  }
  for (auto at = text.find("<string>-"); at != std::string::npos; at = text.find("<string>-", at)) {
    const std::string option = Between(text, "<string>", "</string>", at);
    if (at != std::string::npos && IsSecretOption(option)) {
      AddElement(option, text, at, replacements);
    }
  }
}

void AddLine(const std::string& line, Replacements& replacements);

void AddBinaryElements(const std::string& key, const json& value, Replacements& replacements) {
  if (value.is_string()) {
    const std::string text = value;
    AddKeyedText(key, text, replacements);
    AddLine(text, replacements);
    AddForms(text, replacements);
  } else if (value.is_binary()) {
    const auto& bytes = value.get_binary();
    AddKeyedData(key, {bytes.begin(), bytes.end()}, replacements);
  } else if (value.is_array()) {
    std::string option;
    for (const json& item : value) {
      AddBinaryElements(option, item, replacements);
      option = item.is_string() && IsSecretOption(item) ? item.get<std::string>() : "";
    }
  } else if (value.is_object()) {
    for (const auto& [name, item] : value.items()) AddBinaryElements(name, item, replacements);
  }
}

/// What comes before a ":" or "=": the text between the last quotes, or back to a separator.
std::string KeyBefore(const std::string& line, std::size_t separator) {
  const std::size_t begin = separator - std::min(separator, LONGEST_KEY);
  std::string key = boost::trim_right_copy(line.substr(begin, separator - begin));
  if (boost::ends_with(key, "\"")) {
    key.pop_back();
    return key.substr(key.rfind('"') + 1);
  }
  return boost::trim_copy(key.substr(key.find_last_of("?&;,{}<>|\"") + 1));
}

void AddLineValue(const std::string& key, const std::string& rest, Replacements& replacements) {
  const std::size_t begin = rest.find_first_not_of(" \t");
  if (begin == std::string::npos) return;
  const char first = rest[begin];
  if (first == '"') {
    AddKeyedText(key, rest.substr(begin + 1, rest.find('"', begin + 1) - begin - 1), replacements);
  } else if (first == '<') {
    const std::string digits = rest.substr(begin + 1, rest.find('>', begin) - begin - 1);
    const bool isHex = std::all_of(digits.begin(), digits.end(), IsHexDigit);
    if (isHex && digits.size() % 2 == 0) AddKeyedData(key, FromHex(digits), replacements);
  } else {
    AddKeyedText(key, rest.substr(begin, rest.find_first_of(",;}&<\"\t\r", begin) - begin),
                 replacements);
  }
}

void AddLine(const std::string& line, Replacements& replacements) {
  for (auto at = line.find_first_of(":="); at != std::string::npos;
       at = line.find_first_of(":=", at + 1)) {
    const std::string key = KeyBefore(line, at);
    AddLineValue(key, line.substr(at + 1, LONGEST_VALUE), replacements);
    // Of a resolver; other keys of this name hold identifiers.
    if (line[at] == ':' && (key == "domain" || boost::starts_with(key, "search domain[")) &&
        !boost::ends_with(line, ".arpa")) {
      AddSensitive(SensitiveKind::SEARCH_DOMAIN, line.substr(at + 1), replacements);
    }
  }
}

}  // namespace

void ProtectKeys(const std::string& file, const std::string& content, Replacements& replacements) {
  static constexpr char IDENTIFIER[] =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-.";
  std::set<std::string> keys;
  const auto add = [&](const std::string& key) {
    // Others are names of devices, with those of their owners.
    if (key.find_first_not_of(IDENTIFIER) == std::string::npos) keys.insert(key);
  };
  std::istringstream stream(content);
  for (std::string line; std::getline(stream, line);) {
    // The names of shares are users' own.
    if (file == "answers.txt") {
      keys.insert(line.substr(0, std::min(line.find("/SharePoints/"), line.find('|'))));
    }
    std::size_t at = 0;
    std::size_t other = 0;
    add(Between(line, "<key>", "</key>", at));
    add(Between(line, "\"", "\":", other));
  }
  for (const auto& key : keys) replacements.Protect(key);
}

void AddKeyedValues(const std::string& text, Replacements& replacements) {
  if (boost::starts_with(text, "bplist")) {
    AddBinaryElements("", JsonOfPropertyList(text).value_or(json()), replacements);
    return;
  }
  AddXmlElements(text, replacements);
  ForEachDataPart(text, [&](std::size_t begin, std::size_t length) {
    AddKeyedData("", FromBase64(text.substr(begin, length)), replacements);
  });
  ForEachHexPart(text, [&](std::size_t begin, std::size_t length) {
    AddKeyedData("", FromHex(text.substr(begin, length)), replacements);
  });
  ForEachBase64Part(text, [&](std::size_t begin, std::size_t length) {
    const std::string decoded = FromAnyBase64(text.substr(begin, length));
    if (IsText(decoded)) AddLine(decoded, replacements);
  });
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) AddLine(line, replacements);
}

}  // namespace Norvik::Host
