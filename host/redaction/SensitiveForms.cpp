#include "host/redaction/SensitiveForms.h"

#include <algorithm>
#include <boost/algorithm/string/trim.hpp>
#include <iterator>
#include <sstream>
#include <string_view>

#include "common/identification/HostInfoProvider.h"
#include "host/redaction/EncodedBytes.h"
#include "host/redaction/SensitiveKind.h"

namespace Norvik::Host {

namespace {

using namespace std::string_view_literals;

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

void TakeHexForms(const std::string& text, const TakeForm& take) {
  static constexpr std::string_view FORMS[] = {
      "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx", "xx:xx:xx:xx:xx:xx", "xx-xx-xx-xx-xx-xx",
      // In the name of a printer's file.
      "xx_xx_xx_xx_xx_xx", "xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx"};
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (!IsHexDigit(text[at])) continue;
    for (const std::string_view form : FORMS) {
      if (HasForm(text, at, form)) take(SensitiveKind::HEX, text.substr(at, form.size()));
    }
  }
}

/// An address of the link layer whose parts have no leading zero, as in a table of routes.
void TakeShortMac(const std::string& word, const TakeForm& take) {
  std::string address;
  for (const auto& part : WordsIn(word, ":")) {
    if (part.empty() || part.size() > 2 || part.find('.') != std::string::npos) return;
    address += (address.empty() ? "" : ":") + (part.size() == 1 ? "0" + part : part);
  }
  take(SensitiveKind::HEX, address);
}

/// Words of the characters that network addresses are made of.
void TakeNetworkAddresses(const std::string& text, const TakeForm& take) {
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
      take(SensitiveKind::ADDRESS, address);
    } else if (std::count(word.begin(), word.end(), ':') >= 2) {
      take(SensitiveKind::ADDRESS, word);
      // The last part of ::ffff:192.0.2.1.
      take(SensitiveKind::ADDRESS, word.substr(word.rfind(':') + 1));
    }
    if (std::count(word.begin(), word.end(), ':') == 5) TakeShortMac(word, take);
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
void TakeUris(const std::string& text, const TakeForm& take) {
  for (auto at = text.find("//"); at != std::string::npos; at = text.find("//", at)) {
    const bool namesHost = IsHostScheme(text, at);
    at += 2;
    const auto end = text.find_first_of("/ \t\r\n\"'<>?;", at);
    const std::string authority = text.substr(at, end - at);
    const auto sign = authority.rfind('@');
    if (sign == std::string::npos && !namesHost) continue;
    const std::string user = sign == std::string::npos ? "" : authority.substr(0, sign);
    for (const auto& part : WordsIn(user, ":;")) take(SensitiveKind::NAME, part);
    take(SensitiveKind::HOST, authority.substr(sign + 1));
  }
}

void TakePemKeys(const std::string& text, const TakeForm& take) {
  std::istringstream stream(text);
  bool isInside = false;
  for (std::string line; std::getline(stream, line);) {
    if (line.find("-----END ") != std::string::npos) isInside = false;
    if (isInside) take(SensitiveKind::TEXT, boost::trim_copy(line));
    if (line.find("-----BEGIN ") != std::string::npos) isInside = true;
  }
}

bool IsNameCharacter(char c) {
  const char lower = static_cast<char>(c | 0x20);
  return (c >= '0' && c <= '9') || (lower >= 'a' && lower <= 'z') || c == '-' || c == '.';
}

/// "user@host.domain".
void TakeMailAddresses(const std::string& text, const TakeForm& take) {
  const auto isUser = [](char c) { return IsNameCharacter(c) || c == '_' || c == '+'; };
  for (auto at = text.find('@'); at != std::string::npos; at = text.find('@', at + 1)) {
    const auto sign = text.begin() + static_cast<std::ptrdiff_t>(at);
    const std::string domain = boost::trim_right_copy_if(
        std::string(sign + 1, std::find_if_not(sign + 1, text.end(), IsNameCharacter)),
        boost::is_any_of(".-"));
    const auto begin =
        std::find_if_not(std::make_reverse_iterator(sign), text.rend(), isUser).base();
    const auto dot = domain.rfind('.');
    // No number, as in names of pictures for fine displays ("icon@2x.png") and of devices.
    const bool isDomain = dot != std::string::npos && domain.size() > dot + 2 && domain[0] > '9';
    if (begin == sign || !isDomain) continue;
    take(SensitiveKind::SEARCH_DOMAIN, domain);
    // With the "@" only: the name may be a usual word.
    take(SensitiveKind::TEXT, std::string(begin, sign + 1));
  }
}

}  // namespace

void ForEachHomeFolder(const std::string& text, const TakeForm& take) {
  for (const std::string_view homes : {"/Users/"sv, "/home/"sv}) {
    for (auto at = text.find(homes); at != std::string::npos; at = text.find(homes, at)) {
      at += homes.size();
      const auto end = text.find_first_of("/\\\"'<>;:,() \t\r\n\0"sv, at);
      const std::string user = text.substr(at, end - at);
      if (user != "Shared" && user != "Guest") take(SensitiveKind::NAME, user);
    }
  }
}

void ForEachForm(const std::string& text, const TakeForm& take) {
  for (const auto form : {TakeHexForms, TakeNetworkAddresses, ForEachHomeFolder, TakeUris,
                          TakeMailAddresses, TakePemKeys}) {
    form(text, take);
  }
}

void AddForms(const std::string& text, Replacements& replacements) {
  ForEachForm(text, [&](SensitiveKind kind, const std::string& value) {
    AddSensitive(kind, value, replacements);
  });
}

}  // namespace Norvik::Host
