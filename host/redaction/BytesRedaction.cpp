#include "host/redaction/BytesRedaction.h"

#include <sodium.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string_view>

#include "host/redaction/EncodedBytes.h"
#include "host/redaction/SensitiveFirmware.h"

namespace Norvik::Host {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view EDID_HEADER = "\0\xff\xff\xff\xff\xff\xff\0"sv;
constexpr std::size_t EDID_BLOCK = 128;
constexpr std::size_t EDID_SERIAL = 12;
constexpr std::size_t EDID_EXTENSIONS = 126;
/// Bytes inside of bytes: a property list in one that holds a display's block.
constexpr int MAX_DEPTH = 3;

/// Calls `take` with the place of each valid block of a display, extensions included. A block of
/// extensions has another beginning.
void ForEachEdidBlock(const std::string& bytes,
                      const std::function<void(std::size_t at, bool isFirst)>& take) {
  const auto isValid = [&](std::size_t at) {
    unsigned char sum = 0;
    for (std::size_t next = at; next < at + EDID_BLOCK; ++next) {
      sum = static_cast<unsigned char>(sum + static_cast<unsigned char>(bytes[next]));
    }
    return sum == 0;
  };
  for (auto at = bytes.find(EDID_HEADER); at != std::string::npos;
       at = bytes.find(EDID_HEADER, at + 1)) {
    if (at + EDID_BLOCK > bytes.size()) return;
    const auto count = static_cast<unsigned char>(bytes[at + EDID_EXTENSIONS]);
    for (std::size_t block = 0; block <= count; ++block) {
      const std::size_t begin = at + block * EDID_BLOCK;
      if (begin + EDID_BLOCK > bytes.size()) break;
      if (isValid(begin)) take(begin, block == 0);
    }
  }
}

void SetEdidChecksum(std::string& bytes, std::size_t at) {
  unsigned char sum = 0;
  for (std::size_t next = at; next + 1 < at + EDID_BLOCK; ++next) {
    sum = static_cast<unsigned char>(sum + static_cast<unsigned char>(bytes[next]));
  }
  bytes[at + EDID_BLOCK - 1] = static_cast<char>(-sum);
}

std::uint32_t NumberOf(const std::string& bytes) {
  std::uint32_t number = 0;
  for (const char c : bytes) number = number << 8 | static_cast<unsigned char>(c);
  return number;
}

std::string Reversed(std::string bytes) {
  std::reverse(bytes.begin(), bytes.end());
  return bytes;
}

}  // namespace

void BytesRedaction::AddDisplays(const std::string& bytes, int depth) {
  ForEachEdidBlock(bytes, [&](std::size_t at, bool isFirst) {
    if (!isFirst) return;
    AddDisplay(bytes.substr(at + EDID_SERIAL, 4));
    AddValuesOfDisplay(bytes.substr(at, EDID_BLOCK), replacements);
  });
  if (depth == MAX_DEPTH) return;
  ForEachHexPart(bytes, [&](std::size_t begin, std::size_t length) {
    AddDisplays(FromHex(bytes.substr(begin, length)), depth + 1);
  });
  ForEachDataPart(bytes, [&](std::size_t begin, std::size_t length) {
    AddDisplays(FromBase64(bytes.substr(begin, length)), depth + 1);
  });
}

std::string BytesRedaction::Apply(const std::string& bytes, int depth) const {
  std::string result = replacements.Apply(bytes);
  ForEachEdidBlock(bytes, [&](std::size_t at, bool isFirst) {
    const auto known = displays_.find(bytes.substr(at + EDID_SERIAL, 4));
    if (isFirst && known != displays_.end()) result.replace(at + EDID_SERIAL, 4, known->second);
    SetEdidChecksum(result, at);
  });
  if (depth == MAX_DEPTH) return result;
  ForEachHexPart(bytes, [&](std::size_t begin, std::size_t length) {
    const std::string digits = bytes.substr(begin, length);
    const std::string before = FromHex(digits);
    const std::string after = Apply(before, depth + 1);
    if (after != before) result.replace(begin, length, ToHex(after, digits));
  });
  ForEachDataPart(bytes, [&](std::size_t begin, std::size_t length) {
    const std::string text = bytes.substr(begin, length);
    const std::string before = FromBase64(text);
    // Also without a change: digits that look like a value are not one.
    if (!before.empty()) result.replace(begin, length, ToBase64(Apply(before, depth + 1), text));
  });
  return result;
}

/// The inventory and the tools write the number in decimal, in either order of the bytes; both
/// keep the number of their digits.
void BytesRedaction::AddDisplay(const std::string& serial) {
  constexpr std::uint32_t LEAST = 1000;
  const std::uint32_t number = NumberOf(serial);
  const std::uint32_t reversed = NumberOf(Reversed(serial));
  if (number < LEAST || displays_.count(serial) != 0) return;
  const std::string digits = std::to_string(number);
  const std::string otherDigits = std::to_string(reversed);
  for (int attempt = 0; attempt < 100'000; ++attempt) {
    std::string bytes = serial;
    for (char& c : bytes) c = c == 0 ? c : static_cast<char>(1 + ::randombytes_uniform(255));
    const std::string to = std::to_string(NumberOf(bytes));
    const std::string otherTo = std::to_string(NumberOf(Reversed(bytes)));
    const bool isSigned = (bytes[0] ^ serial[0]) < 0;
    if (isSigned || to.size() != digits.size() || otherTo.size() != otherDigits.size()) continue;
    replacements.AddNumber(digits, to);
    if (reversed >= LEAST) replacements.AddNumber(otherDigits, otherTo);
    displays_[serial] = bytes;
    return;
  }
}

}  // namespace Norvik::Host
