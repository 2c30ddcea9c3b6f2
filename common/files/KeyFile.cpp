#include "common/files/KeyFile.h"

#include <sodium.h>

#include <cstddef>
#include <stdexcept>

#include "platform/FileSystem.h"
#include "platform/ReplacementFile.h"

namespace Norvik::Common {

namespace {

namespace fs = boost::filesystem;

constexpr std::size_t KEY = std::tuple_size_v<KeyBytes>;
constexpr std::size_t DIGITS = 2 * KEY;
static_assert(crypto_box_PUBLICKEYBYTES == KEY && crypto_box_SECRETKEYBYTES == KEY);

/// A buffer for the text of a key, overwritten at the end.
struct KeyText {
  KeyText() = default;
  KeyText(const KeyText&) = delete;
  KeyText& operator=(const KeyText&) = delete;
  ~KeyText() { sodium_memzero(text, sizeof(text)); }
  char text[128] = {};
};

}  // namespace

PrivateKey::~PrivateKey() { sodium_memzero(bytes.data(), bytes.size()); }

void PrepareEncryption() {
  if (sodium_init() < 0) throw std::runtime_error("The encryption library is not usable");
}

void MakePrivateKey(PrivateKey& key) {
  PublicKey unused;
  crypto_box_keypair(unused.data(), key.bytes.data());
}

PublicKey PublicHalf(const PrivateKey& key) {
  PublicKey half;
  if (crypto_scalarmult_base(half.data(), key.bytes.data()) != 0) {
    throw std::runtime_error("The private key has no public one");
  }
  return half;
}

KeyIdentifier IdentifierOf(const PublicKey& key) {
  KeyIdentifier identifier;
  crypto_generichash(identifier.data(), identifier.size(), key.data(), key.size(), nullptr, 0);
  return identifier;
}

std::string FingerprintOf(const KeyIdentifier& identifier) {
  std::string digits(2 * identifier.size() + 1, '\0');
  sodium_bin2hex(digits.data(), digits.size(), identifier.data(), identifier.size());
  digits.pop_back();
  return digits;
}

void ReadKeyFile(const fs::path& file, KeyBytes& key) {
  const Platform::FileDescriptor opened = Platform::OpenRegularFile(file.string());
  KeyText buffer;
  const std::size_t length = Platform::ReadFull(opened, buffer.text, sizeof(buffer.text));
  std::size_t decoded = 0;
  const int failure =
      sodium_hex2bin(key.data(), key.size(), buffer.text, length, " \t\r\n", &decoded, nullptr);
  if (failure || decoded != key.size()) {
    throw std::runtime_error(file.string() + " is no key of 64 hexadecimal digits");
  }
}

void WriteKey(const Platform::FileDescriptor& file, const KeyBytes& key) {
  KeyText line;
  sodium_bin2hex(line.text, sizeof(line.text), key.data(), key.size());
  line.text[DIGITS] = '\n';
  Platform::WriteAll(file, line.text, DIGITS + 1);
}

void WriteKeyFile(const fs::path& file, const KeyBytes& key) {
  Platform::ReplacementFile replacement(file.string());
  WriteKey(replacement.Descriptor(), key);
  replacement.Commit();
}

bool WriteNewKeyFile(const fs::path& file, const KeyBytes& key) {
  Platform::ReplacementFile replacement(file.string());
  WriteKey(replacement.Descriptor(), key);
  return replacement.CommitIfAbsent();
}

}  // namespace Norvik::Common
