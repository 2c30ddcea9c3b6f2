#include "common/text/Base64Coder.h"

#include <sodium.h>

#include <cstddef>

namespace Norvik::Common {

namespace {

/// Decoded bytes; none for text that is no Base64.
std::string Decode(const std::string& text) {
  std::string bytes(text.size() / 4 * 3 + 3, '\0');
  std::size_t length = 0;
  const int failure = sodium_base642bin(reinterpret_cast<unsigned char*>(bytes.data()),
                                        bytes.size(), text.data(), text.size(), " \t\n\v\f\r",
                                        &length, nullptr, sodium_base64_VARIANT_ORIGINAL);
  bytes.resize(failure ? 0 : length);
  return bytes;
}

}  // namespace

std::vector<std::string> Base64Coder::DecodeStringBytes(const std::string& text) {
  const std::string bytes = Decode(text);
  std::vector<std::string> texts;
  for (std::size_t begin = 0; begin < bytes.size();) {
    const std::size_t end = std::min(bytes.find('\0', begin), bytes.size());
    texts.push_back(bytes.substr(begin, end - begin));
    begin = end + 1;
  }
  return texts;
}

}  // namespace Norvik::Common
