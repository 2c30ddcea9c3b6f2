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
#include "host/recording/EncodedBytes.h"

namespace Norvik::Host {

namespace {

using nlohmann::json;

enum class Kind { SERIAL, NAME, HOST, SEARCH_DOMAIN, HEX, ADDRESS };

struct SensitiveKey {
  std::string_view section;  ///< of the document; empty: any
  std::string_view key;
  Kind kind;
};

constexpr SensitiveKey DOCUMENT_KEYS[] = {
    {"", "serial", Kind::SERIAL},       {"", "serialNumber", Kind::SERIAL},
    {"", "assetTag", Kind::SERIAL},     {"device", "name", Kind::HOST},
    {"device", "alias", Kind::HOST},    {"device", "domain", Kind::SEARCH_DOMAIN},
    {"device", "userName", Kind::NAME}, {"device", "workGroup", Kind::NAME},
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

void AddDomain(const std::string& domain, Replacements& replacements) {
  // A single label, as "local", is no domain of anyone's own.
  if (domain.find('.') != std::string::npos) replacements.AddText(domain);
}

/// A host, or what comes after "host:/", which is left out.
void AddHost(const std::string& text, Replacements& replacements) {
  replacements.AddAddress(text);
  if (std::count(text.begin(), text.end(), ':') > 1) return;
  const std::string host = text.substr(0, text.find_first_of(":/"));
  const std::string first = host.substr(0, host.find('.'));
  const bool isNumber = first.find_first_not_of("0123456789") == std::string::npos;
  replacements.AddAddress(host);
  if (isNumber || IsCommonName(first)) return;
  // Tools print the first label alone too. The others are replaced as a whole: one of them is
  // mostly the name of an organisation, which is in names of programs as well.
  replacements.AddText(first);
  AddDomain(host.substr(std::min(host.size(), first.size() + 1)), replacements);
}

bool LooksLikeSerial(const std::string& value) {
  // Texts in place of a number, as "None" or "To be filled", have no digit or are words.
  const bool hasDigit = value.find_first_of("0123456789") != std::string::npos;
  const bool isZero = value.find_first_not_of("0x") == std::string::npos;
  // What the collector gives for each number of a display that is too large.
  if (value == "2147483647") return false;
  const bool isOne = value.find_first_of(" \t<>{}()\"") == std::string::npos;
  return value.size() >= 4 && isOne && !isZero && (hasDigit || value.size() >= 8);
}

void Add(Kind kind, const std::string& text, Replacements& replacements) {
  const std::string value = boost::trim_copy(text);
  if (kind == Kind::SERIAL && LooksLikeSerial(value)) replacements.AddText(value);
  if (kind == Kind::NAME) AddName(value, replacements);
  if (kind == Kind::HEX) replacements.AddHex(value);
  if (kind == Kind::ADDRESS) replacements.AddAddress(value);
  // Of a network volume without a host the whole source is given.
  const bool isHost = value.find(' ') == std::string::npos;
  if (kind == Kind::HOST && isHost) AddHost(value, replacements);
  if (kind != Kind::SEARCH_DOMAIN) return;
  for (const auto& domain : WordsIn(value, "\n")) AddDomain(domain, replacements);
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

/// Whether a text has hexadecimal digits where the form has "x", and otherwise the form's own
/// characters, and no digit around them.
bool HasForm(const std::string& text, std::size_t at, std::string_view form) {
  if (at + form.size() > text.size() || (at > 0 && IsHexDigit(text[at - 1]))) return false;
  for (std::size_t next = 0; next < form.size(); ++next) {
    const char c = text[at + next];
    if (form[next] == 'x' ? !IsHexDigit(c) : c != form[next]) return false;
  }
  return at + form.size() == text.size() || !IsHexDigit(text[at + form.size()]);
}

void AddHexForms(const std::string& text, Replacements& replacements) {
  static constexpr std::string_view FORMS[] = {"xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx",
                                               "xx:xx:xx:xx:xx:xx", "xx-xx-xx-xx-xx-xx"};
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (!IsHexDigit(text[at])) continue;
    for (const std::string_view form : FORMS) {
      if (HasForm(text, at, form)) replacements.AddHex(text.substr(at, form.size()));
    }
  }
}

/// An address of the link layer whose parts have no leading zero, as in a table of routes.
void AddShortMac(const std::string& word, Replacements& replacements) {
  std::string digits;
  for (const auto& part : WordsIn(word, ":")) {
    if (part.empty() || part.size() > 2) return;
    digits += part.size() == 1 ? "0" + part : part;
  }
  if (digits.find('.') == std::string::npos) replacements.AddHex(digits);
}

/// Words of the characters that network addresses are made of.
void AddNetworkAddresses(const std::string& text, Replacements& replacements) {
  const auto belongs = [](char c) { return IsHexDigit(c) || c == ':' || c == '.'; };
  for (auto at = text.begin(); at != text.end();) {
    at = std::find_if(at, text.end(), belongs);
    const auto end = std::find_if_not(at, text.end(), belongs);
    const std::string word = boost::trim_right_copy_if(std::string(at, end), boost::is_any_of("."));
    at = end;
    // A port may follow an IPv4 address.
    const std::string address = word.substr(0, word.find(':'));
    if (std::count(address.begin(), address.end(), '.') == 3 &&
        address != Common::GetAgentVersion()) {
      replacements.AddAddress(address);
    } else if (std::count(word.begin(), word.end(), ':') >= 2) {
      replacements.AddAddress(word);
    }
    if (std::count(word.begin(), word.end(), ':') == 5) AddShortMac(word, replacements);
  }
}

bool HasSecretKey(const std::string& key) {
  static constexpr std::string_view WORDS[] = {"password",   "passwd",      "secret",     "token",
                                               "privatekey", "private-key", "private_key"};
  return std::any_of(std::begin(WORDS), std::end(WORDS),
                     [&](std::string_view word) { return key.find(word) != std::string::npos; });
}

bool IsSensitiveKey(const std::string& lower) {
  return lower.find("serial") != std::string::npos || HasSecretKey(lower);
}

void AddKeyed(const std::string& key, const std::string& value, Replacements& replacements) {
  const std::string lower = boost::to_lower_copy(key, std::locale::classic());
  const bool hasDigit = value.find_first_of("0123456789") != std::string::npos;
  if (IsSensitiveKey(lower) && hasDigit && LooksLikeSerial(value)) replacements.AddText(value);
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

/// In XML: a text, or the bytes of a data element.
void AddValuesOfKeys(const std::string& text, Replacements& replacements) {
  for (std::size_t at = 0; at != std::string::npos;) {
    const std::string key = Between(text, "<key>", "</key>", at);
    if (at == std::string::npos) return;
    const std::size_t value = text.find_first_not_of(" \t\r\n", at);
    if (value == std::string::npos) return;
    std::size_t end = value;
    if (text.compare(value, 8, "<string>") == 0) {
      AddKeyed(key, Between(text, "<string>", "</string>", end), replacements);
    } else if (text.compare(value, 6, "<data>") == 0 &&
               IsSensitiveKey(boost::to_lower_copy(key, std::locale::classic()))) {
      const std::string bytes = FromBase64(Between(text, "<data>", "</data>", end));
      replacements.AddHex(ToHex(bytes, ""));
    }
  }
}

/// In other texts: after ":" or "=", in a URI up to its next parameter.
void AddValuesOfLines(const std::string& text, Replacements& replacements) {
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    // In a URI other separators come before the key.
    const auto word = line.find("erial");
    const auto separator = line.find_first_of(":=", word == std::string::npos ? 0 : word);
    if (separator == std::string::npos) continue;
    std::string value = line.substr(separator + 1);
    boost::trim_if(value, boost::is_any_of(" \t\r\";,"));
    AddKeyed(line.substr(0, separator), value.substr(0, value.find_first_of("&<")), replacements);
  }
}

bool IsHostScheme(const std::string& text, std::size_t end) {
  static constexpr std::string_view SCHEMES[] = {
      "ipp:", "ipps:", "socket:", "lpd:", "smb:", "afp:", "nfs:", "cifs:"};
  return std::any_of(std::begin(SCHEMES), std::end(SCHEMES), [&](std::string_view scheme) {
    return end >= scheme.size() && text.compare(end - scheme.size(), scheme.size(), scheme) == 0;
  });
}

/// "//user:password@host:port/...", and without a user after certain schemes only.
void AddUris(const std::string& text, Replacements& replacements) {
  for (auto at = text.find("//"); at != std::string::npos; at = text.find("//", at)) {
    const bool namesHost = IsHostScheme(text, at);
    at += 2;
    const auto end = text.find_first_of("/ \t\r\n\"'<>?;", at);
    const std::string authority = text.substr(at, end - at);
    const auto sign = authority.rfind('@');
    if (sign == std::string::npos && !namesHost) continue;
    const std::string user = sign == std::string::npos ? "" : authority.substr(0, sign);
    for (const auto& part : WordsIn(user, ":;")) AddName(part, replacements);
    AddHost(authority.substr(sign + 1), replacements);
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
  AddHexForms(text, replacements);
  AddNetworkAddresses(text, replacements);
  AddValuesOfKeys(text, replacements);
  AddValuesOfLines(text, replacements);
  AddUris(text, replacements);
  AddPemKeys(text, replacements);
}

}  // namespace Norvik::Host
