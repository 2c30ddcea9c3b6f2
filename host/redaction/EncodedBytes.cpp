#include "host/redaction/EncodedBytes.h"

#include <sodium.h>

#include <algorithm>
#include <boost/algorithm/hex.hpp>
#include <string_view>
#include <utility>

#include "json/Utf8.h"

namespace Norvik::Host {

namespace {

/// Shorter digits are no bytes of interest.
constexpr std::size_t LEAST_HEX_DIGITS = 12;

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

bool IsBase64Digit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '+' ||
         c == '/' || c == '-' || c == '_';
}

/// Without its padding.
int VariantOf(const std::string& text) {
  return text.find_first_of("-_") == std::string::npos ? sodium_base64_VARIANT_ORIGINAL_NO_PADDING
                                                       : sodium_base64_VARIANT_URLSAFE_NO_PADDING;
}

std::string Decoded(const std::string& text, int variant) {
  std::string bytes(text.size(), '\0');
  std::size_t length = 0;
  const int failure =
      ::sodium_base642bin(reinterpret_cast<unsigned char*>(bytes.data()), bytes.size(), text.data(),
                          text.size(), " \t\r\n", &length, nullptr, variant);
  bytes.resize(failure == 0 ? length : 0);
  return bytes;
}

std::string Encoded(const std::string& bytes, std::string text, int variant) {
  std::string encoded(::sodium_base64_encoded_len(bytes.size(), variant), '\0');
  ::sodium_bin2base64(encoded.data(), encoded.size(),
                      reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(), variant);
  encoded.pop_back();
  auto next = encoded.begin();
  for (char& c : text) {
    if (!IsBlank(c) && next != encoded.end()) c = *next++;
  }
  return text;
}

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

void ForEachBase64Part(const std::string& text, const TakePart& take) {
  constexpr std::size_t LEAST = 8;
  for (auto at = text.begin(); at != text.end();) {
    at = std::find_if(at, text.end(), IsBase64Digit);
    auto end = std::find_if_not(at, text.end(), IsBase64Digit);
    for (int padding = 0; padding < 2 && end != text.end() && *end == '='; ++padding) ++end;
    const auto begin = static_cast<std::size_t>(at - text.begin());
    const auto length = static_cast<std::size_t>(end - at);
    at = end;
    if (length >= LEAST) take(begin, length);
  }
}

std::string FromBase64(const std::string& text) {
  return Decoded(text, sodium_base64_VARIANT_ORIGINAL);
}

std::string FromAnyBase64(const std::string& text) {
  return Decoded(text.substr(0, text.find('=')), VariantOf(text));
}

std::string ToBase64(const std::string& bytes, std::string text) {
  return Encoded(bytes, std::move(text), sodium_base64_VARIANT_ORIGINAL);
}

std::string ToAnyBase64(const std::string& bytes, std::string text) {
  const int variant = VariantOf(text);
  return Encoded(bytes, std::move(text), variant);
}

std::string FromHex(const std::string& digits) { return boost::algorithm::unhex(digits); }

std::string ToHex(const std::string& bytes, const std::string& digits) {
  const bool isUpper =
      std::any_of(digits.begin(), digits.end(), [](char c) { return c >= 'A' && c <= 'F'; });
  return isUpper ? boost::algorithm::hex(bytes) : boost::algorithm::hex_lower(bytes);
}

std::string FromPercent(const std::string& text) {
  std::string bytes;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool isEscape = text[at] == '%' && at + 2 < text.size() && IsHexDigit(text[at + 1]) &&
                          IsHexDigit(text[at + 2]);
    bytes += isEscape ? FromHex(text.substr(at + 1, 2))[0] : text[at];
    if (isEscape) at += 2;
  }
  return bytes;
}

std::string ToPercent(const std::string& bytes) {
  static constexpr std::string_view PLAIN = "-._~/:@?&=;,+!*()";
  static constexpr char DIGITS[] = "0123456789ABCDEF";
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    const bool isPlain = (c != '/' && IsBase64Digit(c)) || PLAIN.find(c) != std::string_view::npos;
    text += isPlain ? std::string(1, c) : std::string{'%', DIGITS[byte >> 4], DIGITS[byte & 0xF]};
  }
  return text;
}

bool IsText(const std::string& bytes) {
  return !bytes.empty() && json::IsUtf8(bytes) &&
         std::none_of(bytes.begin(), bytes.end(), [](char c) {
           return static_cast<unsigned char>(c) < ' ' && c != '\t' && c != '\r' && c != '\n';
         });
}

}  // namespace Norvik::Host
