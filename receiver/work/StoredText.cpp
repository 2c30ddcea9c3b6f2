#include "receiver/work/StoredText.h"

#include <sodium.h>
#include <zlib.h>

#include <boost/algorithm/string/predicate.hpp>
#include <cstdlib>
#include <new>
#include <vector>

namespace Norvik::Receiver {

namespace {

constexpr int COMPRESSION_LEVEL = 3;
constexpr int BASE64 = sodium_base64_VARIANT_ORIGINAL;
constexpr char REPLACEMENT[] = "\xEF\xBF\xBD";
/// A worker unpacks half as much at most, but an applied increment may make a document longer.
constexpr unsigned long long MAX_LENGTH = 2ULL << 30;

/// Whether a character is one of those that stand for a byte in a parsed document: U+10FF80 and up.
bool IsMask(const std::string& text, std::size_t at) {
  return text.compare(at, 2, "\xF4\x8F") == 0 && at + 4 <= text.size() &&
         (text[at + 2] == '\xBE' || text[at + 2] == '\xBF');
}

}  // namespace

std::string Packed(const std::string& text) {
  uLongf size = compressBound(text.size());
  std::vector<unsigned char> bytes(size);
  if (compress2(bytes.data(), &size, reinterpret_cast<const Bytef*>(text.data()), text.size(),
                COMPRESSION_LEVEL) != Z_OK) {
    throw std::bad_alloc();
  }
  std::string packed(sodium_base64_encoded_len(size, BASE64), '\0');
  sodium_bin2base64(packed.data(), packed.size(), bytes.data(), size, BASE64);
  packed.pop_back();  // its terminator
  return std::to_string(text.size()) + ":" + packed;
}

std::string Unpacked(const std::string& packed) {
  const std::size_t colon = packed.find(':');
  const unsigned long long length = std::strtoull(packed.c_str(), nullptr, 10);
  if (colon == std::string::npos || length > MAX_LENGTH) return {};
  std::vector<unsigned char> bytes(packed.size());
  std::size_t size = 0;
  const std::size_t from = colon + 1;
  if (sodium_base642bin(bytes.data(), bytes.size(), packed.data() + from, packed.size() - from,
                        nullptr, &size, nullptr, BASE64) != 0) {
    return {};
  }
  std::string text(length, '\0');
  uLongf unpacked = text.size();
  const int result =
      uncompress(reinterpret_cast<Bytef*>(text.data()), &unpacked, bytes.data(), size);
  return result == Z_OK && unpacked == length ? text : std::string();
}

std::string StorableText(const nlohmann::json& value) {
  const std::string text = value.dump();
  std::string storable;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (IsMask(text, at)) {
      storable += REPLACEMENT;
      at += 3;
    } else if (text[at] == '\\') {
      const bool isNul = boost::starts_with(text.c_str() + at, "\\u0000");
      storable += isNul ? std::string(REPLACEMENT) : text.substr(at, 2);
      at += isNul ? 5 : 1;
    } else {
      storable += text[at];
    }
  }
  return storable;
}

}  // namespace Norvik::Receiver
