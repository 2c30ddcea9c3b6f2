#include "host/server/FileDigest.h"

#include <sodium.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "platform/FileSystem.h"

namespace Norvik::Host {

namespace {

constexpr std::size_t PIECE = 64 << 10;

void Rewind(const Platform::FileDescriptor& file) {
  if (::lseek(file.Get(), 0, SEEK_SET) != 0) {
    throw std::system_error(errno, std::generic_category(), "cannot go back in a file");
  }
}

}  // namespace

FileDigest DigestOf(const Platform::FileDescriptor& file, const std::atomic<bool>& stopped) {
  Rewind(file);
  FileDigest digest;
  crypto_hash_sha256_state state;
  crypto_hash_sha256_init(&state);
  std::vector<char> piece(PIECE);
  while (const std::size_t read = Platform::ReadFull(file, piece.data(), piece.size())) {
    crypto_hash_sha256_update(&state, reinterpret_cast<const unsigned char*>(piece.data()), read);
    digest.size += read;
    if (stopped) throw std::runtime_error("the agent stops");
  }
  std::array<unsigned char, crypto_hash_sha256_BYTES> hash{};
  crypto_hash_sha256_final(&state, hash.data());
  std::array<char, 2 * crypto_hash_sha256_BYTES + 1> text{};
  sodium_bin2hex(text.data(), text.size(), hash.data(), hash.size());
  digest.sha256 = text.data();
  Rewind(file);
  return digest;
}

}  // namespace Norvik::Host
