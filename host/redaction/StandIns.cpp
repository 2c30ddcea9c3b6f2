#include "host/redaction/StandIns.h"

#include <arpa/inet.h>
#include <sodium.h>

#include <algorithm>
#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/join.hpp>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/split.hpp>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <locale>
#include <vector>

#include "host/redaction/Permutation.h"

namespace Norvik::Host {

namespace {

/// Letters that are exchanged for each other. All of a block have the same length in UTF-8 and in
/// UTF-16, which stays.
constexpr struct {
  std::uint32_t first;
  std::uint32_t last;
} BLOCKS[] = {
    {0x00C0, 0x024F}, {0x0370, 0x03FF}, {0x0400, 0x052F}, {0x0530, 0x058F},   {0x05D0, 0x05EA},
    {0x0620, 0x06D3}, {0x0900, 0x0DFF}, {0x0E01, 0x0E2E}, {0x10A0, 0x10FF},   {0x1E00, 0x1EFF},
    {0x3041, 0x30FA}, {0x4E00, 0x9FFF}, {0xAC00, 0xD7A3}, {0x1F300, 0x1FAFF}, {0x20000, 0x2FFFF},
};

/// A character of UTF-8 in a text; of length 0 without one.
struct Character {
  std::uint32_t code = 0;
  std::size_t length = 0;
};

Character CharacterAt(const std::string& text, std::size_t at) {
  const auto byte = [&](std::size_t offset) {
    return at + offset < text.size() ? static_cast<unsigned char>(text[at + offset]) : 0u;
  };
  const std::uint32_t first = byte(0);
  if (first < 0x80) return {first, 1};
  if (first < 0xC2 || first > 0xF4) return {};
  const std::size_t length = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  std::uint32_t code = first & (0xFFu >> (length + 1));
  for (std::size_t next = 1; next < length; ++next) {
    if ((byte(next) & 0xC0) != 0x80) return {};
    code = code << 6 | (byte(next) & 0x3F);
  }
  return {code, length};
}

void WriteCharacter(std::string& text, std::size_t at, const Character& character) {
  std::uint32_t code = character.code;
  if (character.length == 1) {
    text[at] = static_cast<char>(code);
    return;
  }
  for (std::size_t next = character.length; next-- > 1; code >>= 6) {
    text[at + next] = static_cast<char>(0x80 | (code & 0x3F));
  }
  const std::uint32_t mark = 0xF00u >> character.length & 0xFF;
  text[at] = static_cast<char>(mark | code);
}

bool IsIn(std::uint32_t code, std::uint32_t first, std::uint32_t last) {
  return code >= first && code <= last;
}

/// Where a character varies, and its digit there.
struct Place {
  std::size_t at;
  std::size_t length;
  std::uint32_t first;  ///< of its block
};

bool LooksHex(const std::string& text) {
  return text.find_first_not_of("0123456789abcdefABCDEF-:") == std::string::npos;
}

std::vector<std::string> PartsOf(const std::string& text, const char* separators) {
  std::vector<std::string> parts;
  return boost::split(parts, text, boost::is_any_of(separators));
}

/// Resolvers that anyone uses name nobody's network.
bool IsCommonResolver(const std::string& address) {
  static constexpr const char* COMMON[] = {"1.1.1.1", "1.0.0.1", "8.8.8.8", "8.8.4.4", "9.9.9.9"};
  return std::find(std::begin(COMMON), std::end(COMMON), address) != std::end(COMMON);
}

}  // namespace

std::string StandIns::NewSecret() {
  std::string secret(crypto_generichash_KEYBYTES, '\0');
  ::randombytes_buf(secret.data(), secret.size());
  return secret;
}

StandIns::StandIns(const std::string& secret) : key_(crypto_generichash_KEYBYTES, '\0') {
  ::crypto_generichash(reinterpret_cast<unsigned char*>(key_.data()), key_.size(),
                       reinterpret_cast<const unsigned char*>(secret.data()), secret.size(),
                       nullptr, 0);
}

const std::string& StandIns::Made(const std::string& value, const std::string& standIn) const {
  if (made_ && value != standIn) made_(value, standIn);
  return standIn;
}

std::string StandIns::Permuted(const std::string& text, Alphabet alphabet,
                               const std::string& tweak) const {
  std::vector<Place> places;
  std::vector<Digit> digits;
  const auto add = [&](std::size_t at, const Character& character, std::uint32_t first,
                       std::uint32_t count) {
    places.push_back({at, character.length, first});
    digits.push_back({character.code - first, count});
  };
  const std::uint32_t letters = alphabet == Alphabet::TEXT ? 26 : 6;
  const std::uint32_t zero = alphabet == Alphabet::HEX ? U'1' : U'0';
  for (std::size_t at = 0; at < text.size();) {
    const Character character = CharacterAt(text, at);
    const std::uint32_t code = character.code;
    if (IsIn(code, zero, '9')) add(at, character, zero, '9' - zero + 1);
    if (IsIn(code, 'a', 'a' + letters - 1)) add(at, character, 'a', letters);
    if (IsIn(code, 'A', 'A' + letters - 1)) add(at, character, 'A', letters);
    for (const auto& [first, last] : BLOCKS) {
      if (IsIn(code, first, last)) add(at, character, first, last - first + 1);
    }
    at += std::max<std::size_t>(character.length, 1);
  }
  Permute(digits, key_, tweak);
  std::string result = text;
  for (std::size_t next = 0; next < places.size(); ++next) {
    const auto& [at, length, first] = places[next];
    WriteCharacter(result, at, {first + digits[next].value, length});
  }
  return result;
}

std::string StandIns::OfText(const std::string& text) const {
  if (LooksHex(text)) return Made(text, Permuted(text, Alphabet::HEX_TEXT, "hex"));
  std::string result = text;
  // A text must not become one of the hexadecimal ones, which are those of others.
  do result = Permuted(result, Alphabet::TEXT, "text");
  while (LooksHex(result));
  return Made(text, result);
}

std::string StandIns::OfWords(const std::string& text) const {
  std::vector<std::string> words = PartsOf(text, " ");
  for (std::string& word : words) word = OfText(word);
  return boost::join(words, " ");
}

std::string StandIns::OfHex(const std::string& digits) const {
  return Made(digits, Permuted(digits, Alphabet::HEX, "digits"));
}

std::string StandIns::OfHost(const std::string& name) const {
  const auto dot = name.find('.');
  if (dot == std::string::npos) return OfText(name);
  const std::string domain = name.substr(dot + 1);
  const bool isOwn = domain.find('.') != std::string::npos;
  return OfText(name.substr(0, dot)) + "." + (isOwn ? OfText(domain) : domain);
}

std::string StandIns::PartOfIpv4(const std::string& part, const std::string& before) const {
  if (part == "0" || part == "255") return part;
  const std::uint32_t least = part.size() == 1 ? 1 : part.size() == 2 ? 10 : 100;
  const std::uint32_t count = part.size() == 1 ? 9 : part.size() == 2 ? 90 : 155;
  std::vector<Digit> digit{{static_cast<std::uint32_t>(std::stoul(part)) - least, count}};
  Permute(digit, key_, before + ".");
  return std::to_string(least + digit[0].value);
}

std::string StandIns::OfIpv4(const std::string& address) const {
  const auto parts = PartsOf(address, ".");
  const int first = std::stoi(parts[0]);
  const int second = std::stoi(parts[1]);
  if (first == 0 || first == 127 || first >= 224 || IsCommonResolver(address)) return address;
  const bool keepsTwo = (first == 192 && second == 168) || (first == 169 && second == 254) ||
                        (first == 172 && second >= 16 && second < 32);
  // Of the ranges that nobody has, there is one for each number of digits.
  std::string result = parts[0];
  if (first != 10 && !keepsTwo) result = first < 10 ? "0" : first < 100 ? "10" : "240";
  std::string before = parts[0];
  for (std::size_t at = 1; at < parts.size(); ++at) {
    result += "." + (at == 1 && keepsTwo ? parts[at] : PartOfIpv4(parts[at], before));
    before += "." + parts[at];
  }
  return result;
}

std::string StandIns::OfIpv6(const std::string& address) const {
  if (boost::starts_with(address, "::") || boost::starts_with(address, "ff")) return address;
  const auto parts = PartsOf(address, ":");
  const bool isGlobal =
      parts[0].size() == 4 && IsIn(static_cast<unsigned char>(parts[0][0]), '2', '3');
  std::string before = parts[0] + ":";
  std::string result = isGlobal ? "2001" : parts[0];
  for (std::size_t at = 1; at < parts.size(); ++at) {
    // The range of documentation, as far as its digits fit.
    const bool isRange = isGlobal && at == 1 && parts[1].size() >= 3;
    result += ":";
    result += isRange ? (parts[1].size() == 3 ? "db8" : "0db8")
                      : Permuted(parts[at], Alphabet::HEX, before);
    before += parts[at] + ":";
  }
  return result;
}

std::string StandIns::OfAddress(const std::string& address) const {
  const auto zone = std::min(address.find('%'), address.size());
  const std::string plain = boost::to_lower_copy(address.substr(0, zone), std::locale::classic());
  in6_addr parsed{};
  const bool isIpv4 = ::inet_pton(AF_INET, plain.c_str(), &parsed) == 1;
  const bool isIpv6 = ::inet_pton(AF_INET6, plain.c_str(), &parsed) == 1;
  // The IPv4 address in one is found by itself.
  if (isIpv6 && plain.find('.') != std::string::npos) {
    const auto colon = plain.rfind(':') + 1;
    return plain.substr(0, colon) + OfAddress(plain.substr(colon)) + address.substr(zone);
  }
  if (!isIpv4 && !isIpv6) return address;
  return Made(address, (isIpv4 ? OfIpv4(plain) : OfIpv6(plain)) + address.substr(zone));
}

std::string StandIns::OfNumber(const std::string& number, unsigned int most) const {
  const auto begin = std::min(number.find_first_of("0123456789"), number.size());
  const auto end = std::min(number.find_first_not_of("0123456789", begin), number.size());
  std::string whole = number.substr(begin, end - begin);
  if (whole.empty() || whole.size() > 9) return number;
  std::uint32_t least = 1;
  while (std::uint64_t{least} * 10 <= std::stoul(whole)) least *= 10;
  const std::uint32_t last = std::min(most, least * 10);
  const auto value = static_cast<std::uint32_t>(std::stoul(whole));
  if (value != 0 && value < last && last - least > 1) {
    std::vector<Digit> digit{{value - least, last - least}};
    Permute(digit, key_, "number");
    whole = std::to_string(least + digit[0].value);
  }
  const auto fractionEnd = std::min(number.find_first_of("eE", end), number.size());
  const std::string fraction =
      Permuted(number.substr(end, fractionEnd - end), Alphabet::HEX, number.substr(0, end));
  return Made(number, number.substr(0, begin) + whole + fraction + number.substr(fractionEnd));
}

}  // namespace Norvik::Host
