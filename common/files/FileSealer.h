#pragma once

#include <boost/filesystem/path.hpp>

#include "common/Api.h"
#include "common/files/OpeningKeys.h"
#include "common/files/SealedStart.h"

namespace Norvik::Common {

/// No private key at hand opens the file, or, in version 1, it was altered. The text names the key
/// that the file needs, which version 1 does not name, and those that were tried.
class NORVIK_COMMON_API WrongKeyError : public SealedFileError {
 public:
  using SealedFileError::SealedFileError;
  ~WrongKeyError() override;
};

/// Encrypts files to a public key, and decrypts them with the private one. The memory used does not
/// depend on the size of a file. Objects hold no key; several threads may use them. The format is
/// described in docs/outbox-format.md.
class NORVIK_COMMON_API FileSealer {
 public:
  /// @param keyFolder the folder of `SealingKeys`; `Seal` creates a pair of keys there if it has no
  ///        public key
  explicit FileSealer(boost::filesystem::path keyFolder);

  /// Replaces the target whole or not at all. Throws a subclass of `std::runtime_error` on failure.
  void Seal(const boost::filesystem::path& source, const boost::filesystem::path& target) const;
  /// `OpenSealedFile` with the private keys of the folder.
  void Open(const boost::filesystem::path& source, const boost::filesystem::path& target) const;

  /// Whether this machine's own pair opens the file. A file of version 2 says so in its start; one
  /// of version 1 is tried, and false if it is damaged. Throws what `SealedStartOf` throws.
  bool IsSealedToOwnKey(const boost::filesystem::path& file) const;
  /// Seals a file that is sealed to this machine's own key to the key of `SealingKeys::ForSealing`
  /// instead; its content is never on the disk. Throws what `Open` and `Seal` throw, and leaves the
  /// file as it was then.
  void SealAgain(const boost::filesystem::path& file) const;

 private:
  boost::filesystem::path keyFolder_;
};

/// Decrypts the source into the target, which is replaced whole or not at all. Throws
/// `SealedFileError` for a source that is not whole and unaltered, its subclass `WrongKeyError` if
/// none of the keys opens it, and `std::runtime_error` if a file cannot be read or written.
NORVIK_COMMON_API void OpenSealedFile(const boost::filesystem::path& source,
                                      const boost::filesystem::path& target,
                                      const OpeningKeys& keys);
/// The key that opens a file, of which only the part before the chunks is read; of `keys`. Throws
/// what `OpenSealedFile` throws.
NORVIK_COMMON_API const OpeningKey& KeyOfSealedFile(const boost::filesystem::path& file,
                                                    const OpeningKeys& keys);

}  // namespace Norvik::Common
