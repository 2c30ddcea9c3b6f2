#include "host/recording/SensitiveValues.h"

#include <algorithm>
#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/split.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <iterator>
#include <locale>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string_view>

#include "common/identification/HostInfoProvider.h"

namespace Norvik::Host {

namespace {

using nlohmann::json;

enum class Kind { TEXT, NAME, HOST, HEX, ADDRESS };

struct SensitiveKey {
  std::string_view section;  ///< of the document; empty: any
  std::string_view key;
  Kind kind;
};

constexpr SensitiveKey DOCUMENT_KEYS[] = {
    {"", "serial", Kind::TEXT},         {"", "serialNumber", Kind::TEXT},
    {"", "assetTag", Kind::TEXT},       {"device", "name", Kind::HOST},
    {"device", "alias", Kind::HOST},    {"device", "domain", Kind::HOST},
    {"device", "userName", Kind::NAME}, {"device", "workGroup", Kind::TEXT},
    {"", "server", Kind::HOST},         {"", "uuid", Kind::HEX},
    {"", "macAddress", Kind::HEX},      {"", "address", Kind::ADDRESS},
    {"", "gateways", Kind::ADDRESS},    {"", "dnsServers", Kind::ADDRESS},
    {"", "dhcpServers", Kind::ADDRESS},
};

/// Names that every machine has.
bool IsCommonName(const std::string& name) {
  static constexpr std::string_view COMMON[] = {"root",    "daemon", "nobody",    "guest",
                                                "console", "local",  "localhost", "workgroup"};
  const std::string lower = boost::to_lower_copy(name, std::locale::classic());
  return boost::starts_with(name, "_") ||
         std::find(std::begin(COMMON), std::end(COMMON), lower) != std::end(COMMON);
}

std::vector<std::string> WordsIn(const std::string& text, const char* separators) {
  std::vector<std::string> words;
  return boost::split(words, text, boost::is_any_of(separators), boost::token_compress_on);
}

/// A full name is also written by its parts, as in the name of a share.
void AddName(const std::string& name, Replacements& replacements) {
  if (IsCommonName(name)) return;
  replacements.AddText(name);
  for (const auto& word : WordsIn(name, " ")) {
    if (!IsCommonName(word)) replacements.AddText(word);
  }
}

void AddHost(const std::string& text, Replacements& replacements) {
  const std::string host = boost::trim_copy(text);
  replacements.AddAddress(host);
  const std::string first = host.substr(0, host.find('.'));
  const bool isNumber = first.find_first_not_of("0123456789") == std::string::npos;
  if (isNumber || IsCommonName(first)) return;
  // The first label alone is the name that tools print.
  replacements.AddText(first);
  const std::string rest = host.substr(std::min(host.size(), first.size() + 1));
  for (const auto& label : WordsIn(rest, ".")) {
    const bool isTopLevel = boost::ends_with(host, "." + label);
    if (!isTopLevel && !IsCommonName(label)) replacements.AddText(label);
  }
}

void Add(Kind kind, const std::string& text, Replacements& replacements) {
  const std::string value = boost::trim_copy(text);
  if (kind == Kind::TEXT && !IsCommonName(value)) replacements.AddText(value);
  if (kind == Kind::NAME) AddName(value, replacements);
  if (kind == Kind::HOST) AddHost(value, replacements);
  if (kind == Kind::HEX) replacements.AddHex(value);
  if (kind == Kind::ADDRESS) replacements.AddAddress(value);
}

void AddTexts(Kind kind, const json& node, Replacements& replacements) {
  if (node.is_string()) Add(kind, node.get<std::string>(), replacements);
  if (!node.is_array()) return;
  for (const json& item : node) AddTexts(kind, item, replacements);
}

void AddSection(const std::string& section, const json& node, Replacements& replacements) {
  if (node.is_array()) {
    for (const json& item : node) AddSection(section, item, replacements);
  }
  if (!node.is_object()) return;
  for (const auto& [key, value] : node.items()) {
    for (const SensitiveKey& known : DOCUMENT_KEYS) {
      if (known.key != key || (!known.section.empty() && known.section != section)) continue;
      AddTexts(known.kind, value, replacements);
    }
    AddSection(section, value, replacements);
  }
}

bool IsHexDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

/// Words of the characters that addresses and UUIDs are made of.
void AddFormedValues(const std::string& text, Replacements& replacements) {
  const auto belongs = [](char c) { return IsHexDigit(c) || c == ':' || c == '-' || c == '.'; };
  for (auto at = text.begin(); at != text.end();) {
    at = std::find_if(at, text.end(), belongs);
    const auto end = std::find_if_not(at, text.end(), belongs);
    std::string word(at, end);
    at = end;
    boost::trim_right_if(word, boost::is_any_of(".-"));
    const auto count = [&](char c) { return std::count(word.begin(), word.end(), c); };
    const bool isUuid = word.size() == 36 && count('-') == 4 && word[8] == '-' && word[23] == '-';
    const bool isMac = word.size() == 17 && (count(':') == 5 || count('-') == 5);
    if (isUuid || isMac) {
      replacements.AddHex(word);
    } else if (count('.') == 3 && word != Common::GetAgentVersion()) {
      // A port may follow.
      replacements.AddAddress(word.substr(0, word.find(':')));
    } else if (count(':') >= 2) {
      replacements.AddAddress(word);
    }
  }
}

bool HasSecretKey(const std::string& key) {
  static constexpr std::string_view WORDS[] = {"password",   "passwd",      "secret",     "token",
                                               "privatekey", "private-key", "private_key"};
  return std::any_of(std::begin(WORDS), std::end(WORDS),
                     [&](std::string_view word) { return key.find(word) != std::string::npos; });
}

/// Serial numbers have digits, other texts after such a key mostly not.
bool LooksLikeSerial(const std::string& value) {
  return value.size() >= 4 && value.find_first_of("123456789") != std::string::npos &&
         value.find_first_of(" <>{}()\"") == std::string::npos;
}

void AddKeyed(const std::string& key, const std::string& value, Replacements& replacements) {
  const std::string lower = boost::to_lower_copy(key, std::locale::classic());
  const bool isSerial = lower.find("serial") != std::string::npos && LooksLikeSerial(value);
  if (isSerial || (HasSecretKey(lower))) {
    replacements.AddText(value);
  }
}

std::string Between(const std::string& text, const char* begin, const char* end) {
  const auto first = text.find(begin);
  if (first == std::string::npos) return {};
  const auto start = first + std::string_view(begin).size();
  const auto last = text.find(end, start);
  return last == std::string::npos ? std::string() : text.substr(start, last - start);
}

/// Values after a key: in XML on the line after it, otherwise after ":" or "=" or, in a URI, up to
/// its next parameter.
void AddKeyedValues(const std::string& text, Replacements& replacements) {
  std::istringstream stream(text);
  std::string key;
  for (std::string line; std::getline(stream, line);) {
    if (!key.empty()) AddKeyed(key, Between(line, "<string>", "</string>"), replacements);
    key = Between(line, "<key>", "</key>");
    if (!key.empty()) AddKeyed(key, Between(line, "<string>", "</string>"), replacements);
    // In a URI other separators come before the key.
    const auto word = line.find("erial");
    const auto separator = line.find_first_of(":=", word == std::string::npos ? 0 : word);
    if (separator == std::string::npos) continue;
    std::string value = line.substr(separator + 1);
    boost::trim_if(value, boost::is_any_of(" \t\r\";,"));
    AddKeyed(line.substr(0, separator), value.substr(0, value.find('&')), replacements);
  }
}

/// "//user:password@host:port/..."
void AddUris(const std::string& text, Replacements& replacements) {
  for (auto at = text.find("//"); at != std::string::npos; at = text.find("//", at)) {
    at += 2;
    const auto end = text.find_first_of("/ \t\r\n\"'<>?;", at);
    const std::string authority = text.substr(at, end - at);
    const auto sign = authority.rfind('@');
    if (sign == std::string::npos) continue;
    for (const auto& part : WordsIn(authority.substr(0, sign), ":;")) AddName(part, replacements);
    AddHost(authority.substr(sign + 1, authority.find(':', sign) - sign - 1), replacements);
  }
}

void AddPemKeys(const std::string& text, Replacements& replacements) {
  std::istringstream stream(text);
  bool isInside = false;
  for (std::string line; std::getline(stream, line);) {
    if (line.find("-----END ") != std::string::npos) isInside = false;
    if (isInside) replacements.AddText(boost::trim_copy(line));
    if (line.find("-----BEGIN ") != std::string::npos) isInside = true;
  }
}

}  // namespace

void ProtectKeys(const std::string& file, const std::string& content, Replacements& replacements) {
  std::set<std::string> keys;
  std::istringstream stream(content);
  for (std::string line; std::getline(stream, line);) {
    // The names of shares are users' own.
    if (file == "answers.txt")
      keys.insert(line.substr(0, std::min(line.find("/SharePoints/"), line.find('|'))));
    const std::string key = Between(line, "<key>", "</key>");
    keys.insert(key.empty() ? Between(line, "\"", "\":") : key);
  }
  for (const auto& key : keys) replacements.Protect(key);
}

void AddValuesOfDocument(const std::string& document, Replacements& replacements) {
  const json root = json::parse(document, nullptr, /*allow_exceptions=*/false);
  if (!root.is_object()) return;
  for (const auto& [section, node] : root.items()) AddSection(section, node, replacements);
}

void AddValuesOfFacts(const std::string& file, const std::string& content,
                      Replacements& replacements) {
  const json root = json::parse(content, nullptr, /*allow_exceptions=*/false);
  if (!root.is_object()) return;
  if (file == "sysctl.json") AddHost(root.value("kern.hostname", ""), replacements);
  if (file != "accounts.json") return;
  for (const json& user : root.at("users")) {
    const std::string name = user.at("name");
    if (IsCommonName(name)) continue;
    AddName(name, replacements);
    AddName(user.at("fullName"), replacements);
  }
  for (const json& login : root.at("logins")) {
    AddName(login.at("user"), replacements);
    AddHost(login.at("host"), replacements);
  }
}

void AddValuesOfText(const std::string& text, Replacements& replacements) {
  AddFormedValues(text, replacements);
  AddKeyedValues(text, replacements);
  AddUris(text, replacements);
  AddPemKeys(text, replacements);
}

}  // namespace Norvik::Host
