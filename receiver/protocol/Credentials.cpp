#include "receiver/protocol/Credentials.h"

#include <sodium.h>

#include <vector>

namespace Norvik::Receiver {

namespace {

std::string Hexadecimal(const unsigned char* bytes, std::size_t size) {
  std::vector<char> text(2 * size + 1);
  return sodium_bin2hex(text.data(), text.size(), bytes, size);
}

}  // namespace

std::string HashOf(const std::string& secret) {
  unsigned char digest[crypto_hash_sha256_BYTES];
  crypto_hash_sha256(digest, reinterpret_cast<const unsigned char*>(secret.data()), secret.size());
  return Hexadecimal(digest, sizeof(digest));
}

bool IsSameHash(const std::string& left, const std::string& right) {
  return left.size() == right.size() && sodium_memcmp(left.data(), right.data(), left.size()) == 0;
}

std::string RandomText(std::size_t bytes) {
  std::vector<unsigned char> random(bytes);
  randombytes_buf(random.data(), random.size());
  return Hexadecimal(random.data(), random.size());
}

}  // namespace Norvik::Receiver
