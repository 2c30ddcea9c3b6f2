#pragma once

#include <boost/filesystem/path.hpp>
#include <stdexcept>

#include "common/Api.h"

namespace Norvik::Common {

/// A file is not sealed, was cut or altered, or was sealed to another key.
class NORVIK_COMMON_API SealedFileError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
  ~SealedFileError() override;
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
  /// Decrypts the source into the target, which is replaced whole or not at all. Throws
  /// `SealedFileError` for a source that is not whole and unaltered, and `std::runtime_error` if a
  /// file cannot be read or written, or there is no private key.
  void Open(const boost::filesystem::path& source, const boost::filesystem::path& target) const;

  /// Whether this machine's own key opens the file. False also if it cannot be read.
  bool IsSealedToOwnKey(const boost::filesystem::path& file) const;
  /// Seals a file that is sealed to this machine's own key to the key of `SealingKeys::ForSealing`
  /// instead; its content is never on the disk. Throws what `Open` and `Seal` throw, and leaves the
  /// file as it was then.
  void SealAgain(const boost::filesystem::path& file) const;

 private:
  boost::filesystem::path keyFolder_;
};

/// Whether a file begins with the mark of sealed files. False also if it cannot be read.
NORVIK_COMMON_API bool IsSealedFile(const boost::filesystem::path& file);

}  // namespace Norvik::Common
