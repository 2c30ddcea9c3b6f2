#include "host/redaction/EncodedBytes.h"

#include <sodium.h>

#include <algorithm>
#include <boost/algorithm/hex.hpp>
#include <string_view>

namespace Norvik::Host {

namespace {

/// Shorter digits are no bytes of interest.
constexpr std::size_t LEAST_HEX_DIGITS = 12;

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

}  // namespace

bool IsHexDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

void ForEachHexPart(const std::string& text, const TakePart& take) {
  for (auto at = text.begin(); at != text.end();) {
    at = std::find_if(at, text.end(), IsHexDigit);
    const auto end = std::find_if_not(at, text.end(), IsHexDigit);
    const auto begin = static_cast<std::size_t>(at - text.begin());
    const auto length = static_cast<std::size_t>(end - at);
    at = end;
    if (length >= LEAST_HEX_DIGITS && length % 2 == 0) take(begin, length);
  }
}

void ForEachDataPart(const std::string& text, const TakePart& take) {
  static constexpr std::string_view BEGIN = "<data>";
  for (auto at = text.find(BEGIN); at != std::string::npos; at = text.find(BEGIN, at)) {
    at += BEGIN.size();
    const auto end = text.find("</data>", at);
    if (end == std::string::npos) return;
    take(at, end - at);
  }
}

std::string FromBase64(const std::string& text) {
  std::string bytes(text.size(), '\0');
  std::size_t length = 0;
  const int failure =
      ::sodium_base642bin(reinterpret_cast<unsigned char*>(bytes.data()), bytes.size(), text.data(),
                          text.size(), " \t\r\n", &length, nullptr, sodium_base64_VARIANT_ORIGINAL);
  bytes.resize(failure == 0 ? length : 0);
  return bytes;
}

std::string ToBase64(const std::string& bytes, std::string text) {
  std::string encoded(sodium_base64_ENCODED_LEN(bytes.size(), sodium_base64_VARIANT_ORIGINAL),
                      '\0');
  ::sodium_bin2base64(encoded.data(), encoded.size(),
                      reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(),
                      sodium_base64_VARIANT_ORIGINAL);
  auto next = encoded.begin();
  for (char& c : text) {
    if (!IsBlank(c) && next != encoded.end()) c = *next++;
  }
  return text;
}

std::string FromHex(const std::string& digits) { return boost::algorithm::unhex(digits); }

std::string ToHex(const std::string& bytes, const std::string& digits) {
  const bool isUpper =
      std::any_of(digits.begin(), digits.end(), [](char c) { return c >= 'A' && c <= 'F'; });
  return isUpper ? boost::algorithm::hex(bytes) : boost::algorithm::hex_lower(bytes);
}

}  // namespace Norvik::Host
