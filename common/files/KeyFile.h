#pragma once

#include <array>
#include <boost/filesystem/path.hpp>
#include <string>

#include "common/Api.h"

namespace Norvik::Platform {
class FileDescriptor;
}

namespace Norvik::Common {

using KeyBytes = std::array<unsigned char, 32>;
using PublicKey = KeyBytes;
/// Names a pair of keys: BLAKE2b with 16 bytes of output, of the public key.
using KeyIdentifier = std::array<unsigned char, 16>;

/// A private key, overwritten in memory by the destructor.
class NORVIK_COMMON_API PrivateKey {
 public:
  PrivateKey() = default;
  PrivateKey(const PrivateKey&) = delete;
  PrivateKey& operator=(const PrivateKey&) = delete;
  ~PrivateKey();

  KeyBytes bytes{};
};

// Functions for keys of sealed files; docs/outbox-format.md describes keys, files and identifiers.
// They throw a subclass of `std::runtime_error`, whose text has the path if there is one.

/// Must be called before keys are used. Throws if the library cannot be used.
NORVIK_COMMON_API void PrepareEncryption();

/// A new random private key.
NORVIK_COMMON_API void MakePrivateKey(PrivateKey& key);
NORVIK_COMMON_API PublicKey PublicHalf(const PrivateKey& key);
NORVIK_COMMON_API KeyIdentifier IdentifierOf(const PublicKey& key);
/// An identifier as texts have it: 32 hexadecimal digits in lower case.
NORVIK_COMMON_API std::string FingerprintOf(const KeyIdentifier& identifier);

/// Reads a file of one line of 64 hexadecimal digits. Links are not followed.
NORVIK_COMMON_API void ReadKeyFile(const boost::filesystem::path& file, KeyBytes& key);
/// Writes the line of a key file.
NORVIK_COMMON_API void WriteKey(const Platform::FileDescriptor& file, const KeyBytes& key);
/// Replaces the file, mode 0600, whole or not at all.
NORVIK_COMMON_API void WriteKeyFile(const boost::filesystem::path& file, const KeyBytes& key);
/// The same if there is no such file yet. Otherwise leaves it and returns false.
NORVIK_COMMON_API bool WriteNewKeyFile(const boost::filesystem::path& file, const KeyBytes& key);

}  // namespace Norvik::Common
