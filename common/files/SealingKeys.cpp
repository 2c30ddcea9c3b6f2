#include "common/files/SealingKeys.h"

#include <sodium.h>
#include <sys/stat.h>

#include <boost/filesystem/operations.hpp>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <utility>

#include "platform/FileSystem.h"
#include "platform/ReplacementFile.h"

namespace Norvik::Common {

namespace {

namespace fs = boost::filesystem;

constexpr char SERVER_KEY[] = "server.pub";
constexpr std::size_t KEY_BYTES = 32;
static_assert(crypto_box_PUBLICKEYBYTES == KEY_BYTES && crypto_box_SECRETKEYBYTES == KEY_BYTES);

using KeyBytes = std::array<unsigned char, KEY_BYTES>;

/// A buffer for the text of a key, overwritten at the end.
struct KeyText {
  KeyText() = default;
  KeyText(const KeyText&) = delete;
  KeyText& operator=(const KeyText&) = delete;
  ~KeyText() { sodium_memzero(text, sizeof(text)); }
  char text[128] = {};
};

void ReadKey(const fs::path& path, KeyBytes& key) {
  const Platform::FileDescriptor file = Platform::OpenRegularFile(path.string());
  KeyText buffer;
  const std::size_t length = Platform::ReadFull(file, buffer.text, sizeof(buffer.text));
  std::size_t decoded = 0;
  const int failure =
      sodium_hex2bin(key.data(), key.size(), buffer.text, length, " \t\r\n", &decoded, nullptr);
  if (failure || decoded != key.size()) {
    throw std::runtime_error(path.string() + " is no key of 64 hexadecimal digits");
  }
}

void FormatKey(const KeyBytes& key, KeyText& line) {
  sodium_bin2hex(line.text, sizeof(line.text), key.data(), key.size());
  line.text[2 * KEY_BYTES] = '\n';
}

void WriteKey(Platform::ReplacementFile& file, const KeyBytes& key) {
  KeyText line;
  FormatKey(key, line);
  Platform::WriteAll(file.Descriptor(), line.text, 2 * KEY_BYTES + 1);
}

PublicKey PublicHalf(const PrivateKey& key) {
  PublicKey half;
  if (crypto_scalarmult_base(half.data(), key.bytes.data()) != 0) {
    throw std::runtime_error("The private key has no public one");
  }
  return half;
}

void MakePrivateKey(const fs::path& path) {
  PublicKey unused;
  PrivateKey key;
  crypto_box_keypair(unused.data(), key.bytes.data());
  Platform::ReplacementFile file(path.string());
  WriteKey(file, key.bytes);
  file.CommitIfAbsent();
}

}  // namespace

PrivateKey::~PrivateKey() { sodium_memzero(bytes.data(), bytes.size()); }

SealingKeys::SealingKeys(fs::path folder) : folder_(std::move(folder)) {
  if (sodium_init() < 0) throw std::runtime_error("The encryption library is not usable");
}

PublicKey SealingKeys::ForSealing() const {
  for (const char* name : {SERVER_KEY, "agent.pub"}) {
    if (!fs::exists(folder_ / name)) continue;
    PublicKey key;
    ReadKey(folder_ / name, key);
    return key;
  }
  return OwnKey();
}

std::string SealingKeys::ServerKeyProblem() const {
  const fs::path path = folder_ / SERVER_KEY;
  boost::system::error_code ignored;
  if (fs::status(path, ignored).type() == fs::file_not_found) return path.string() + " is missing";
  try {
    PublicKey key;
    ReadKey(path, key);
    return {};
  } catch (const std::exception& error) {
    return error.what();
  }
}

PublicKey SealingKeys::OwnKey() const {
  if (fs::create_directories(folder_)) fs::permissions(folder_, fs::owner_all);
  const fs::path path = folder_ / "agent.key";
  if (!fs::exists(path)) MakePrivateKey(path);

  // Read back: another process may have been first.
  PrivateKey key;
  ReadKey(path, key.bytes);
  const PublicKey half = PublicHalf(key);
  Platform::ReplacementFile file((folder_ / "agent.pub").string());
  WriteKey(file, half);
  file.Commit();
  return half;
}

void SealingKeys::ForOpening(PublicKey& publicKey, PrivateKey& privateKey) const {
  ReadKey(folder_ / "agent.key", privateKey.bytes);
  publicKey = PublicHalf(privateKey);
}

}  // namespace Norvik::Common
