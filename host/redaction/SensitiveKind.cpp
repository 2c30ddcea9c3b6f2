#include "host/redaction/SensitiveKind.h"

#include <algorithm>
#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/split.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <iterator>
#include <locale>
#include <string_view>

#include "host/redaction/SensitiveForms.h"

namespace Norvik::Host {

namespace {

/// A full name is also written by its parts, as in the name of a share.
void AddName(const std::string& name, Replacements& replacements) {
  if (IsCommonName(name)) return;
  for (const auto& word : WordsIn(name, " ")) {
    if (!IsCommonName(word)) replacements.AddText(word);
  }
  // Also if its words are too short to be found.
  if (name.find(' ') != std::string::npos) {
    replacements.AddPair(name, replacements.GetStandIns().OfWords(name));
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

bool LooksLikeSecret(const std::string& value) {
  static constexpr std::string_view STATES[] = {"true",     "false",       "none",        "null",
                                                "unknown",  "required",    "optional",    "enabled",
                                                "disabled", "not enabled", "not required"};
  const std::string lower = boost::to_lower_copy(value, std::locale::classic());
  return value.size() >= 4 &&
         std::find(std::begin(STATES), std::end(STATES), lower) == std::end(STATES);
}

}  // namespace

bool IsCommonName(const std::string& name) {
  static constexpr std::string_view COMMON[] = {
      "root", "daemon", "nobody", "guest", "console", "local", "localhost", "workgroup",
      // Groups of a Mac.
      "accessibility", "admin", "authedusers", "bin", "certusers", "consoleusers", "dialer",
      "everyone", "group", "interactusers", "kmem", "localaccounts", "mail", "netaccounts",
      "netusers", "network", "nogroup", "operator", "owner", "procmod", "procview", "staff", "sys",
      "tty", "utmp", "wheel",
      // Of other systems.
      "adm", "audio", "backup", "bluetooth", "cdrom", "crontab", "dip", "disk", "fax", "floppy",
      "games", "gnats", "input", "irc", "kvm", "list", "lp", "lpadmin", "man", "messagebus",
      "netdev", "news", "plugdev", "polkitd", "proxy", "render", "sasl", "scanner", "sgx", "shadow",
      "src", "ssh", "sshd", "sudo", "sync", "tape", "tcpdump", "users", "uucp", "uuidd", "video",
      "voice", "www-data"};
  const std::string lower = boost::to_lower_copy(name, std::locale::classic());
  return boost::starts_with(name, "_") || boost::starts_with(lower, "systemd-") ||
         boost::starts_with(lower, "com.apple.") ||
         std::find(std::begin(COMMON), std::end(COMMON), lower) != std::end(COMMON);
}

bool IsCommonVolume(const std::string& name) {
  static constexpr std::string_view COMMON[] = {
      "Macintosh HD", "Macintosh HD - Data", "Data", "Preboot", "Recovery", "VM",   "Update",
      "xarts",        "iSCPreboot",          "EFI",  "BOOT",    "Hardware", "Boot", "Untitled"};
  return boost::starts_with(name, "com.apple.") ||
         std::find(std::begin(COMMON), std::end(COMMON), name) != std::end(COMMON);
}

std::vector<std::string> WordsIn(const std::string& text, const char* separators) {
  std::vector<std::string> words;
  return boost::split(words, text, boost::is_any_of(separators), boost::token_compress_on);
}

void AddSensitive(SensitiveKind kind, const std::string& text, Replacements& replacements) {
  const std::string value = boost::trim_copy(text);
  switch (kind) {
    case SensitiveKind::SERIAL:
      if (LooksLikeSerial(value)) replacements.AddText(value);
      break;
    case SensitiveKind::NAME:
      AddName(value, replacements);
      break;
    case SensitiveKind::HOST:
      if (value.find("//") != std::string::npos) {
        return AddSensitive(SensitiveKind::URI, value, replacements);
      }
      // Of a network volume without a host the whole source is given.
      if (value.find(' ') == std::string::npos) AddHost(value, replacements);
      break;
    case SensitiveKind::SEARCH_DOMAIN:
      for (const auto& domain : WordsIn(value, "\n")) AddDomain(domain, replacements);
      break;
    case SensitiveKind::HEX:
      replacements.AddHex(value);
      break;
    case SensitiveKind::ADDRESS:
      replacements.AddAddress(value);
      break;
    case SensitiveKind::SECRET:
      if (LooksLikeSecret(value)) replacements.AddText(value);
      break;
    case SensitiveKind::TEXT:
      replacements.AddText(value);
      break;
    case SensitiveKind::URI:
    case SensitiveKind::PATH:
    case SensitiveKind::WORDS:
      ForEachForm(value, [&](SensitiveKind found, const std::string& name) {
        const bool isName = found == SensitiveKind::NAME || found == SensitiveKind::HOST;
        if (isName) AddSensitive(found, name, replacements);
      });
      break;
    case SensitiveKind::LABEL:
    case SensitiveKind::TITLE:
    case SensitiveKind::POSITION:
    case SensitiveKind::HARMLESS:
      break;
  }
}

}  // namespace Norvik::Host
