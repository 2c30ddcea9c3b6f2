#pragma once

#include <boost/filesystem/path.hpp>
#include <stdexcept>
#include <vector>

#include "common/Api.h"
#include "common/files/KeyFile.h"

namespace Norvik::Common {

/// A file is not sealed, was cut or altered, has an unknown version, or was sealed to another key.
class NORVIK_COMMON_API SealedFileError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
  ~SealedFileError() override;
};

/// The first bytes of a sealed file, which are not encrypted. The format is described in
/// docs/outbox-format.md.
struct NORVIK_COMMON_API SealedStart {
  unsigned int version = 0;  ///< 1 or 2
  KeyIdentifier key{};       ///< that the file is sealed to; zeros in version 1, which has none
  /// As they are in the file: the additional data of every chunk.
  std::vector<unsigned char> bytes;

  bool NamesKey() const { return version >= 2; }
};

/// The start of a new file.
NORVIK_COMMON_API SealedStart StartFor(const PublicKey& recipient);
/// Reads no more than the start. Throws `SealedFileError` if the file is not sealed, is cut in its
/// start or has an unknown version, and `std::system_error` if it cannot be read.
NORVIK_COMMON_API SealedStart ReadSealedStart(const Platform::FileDescriptor& file);
NORVIK_COMMON_API SealedStart SealedStartOf(const boost::filesystem::path& file);

/// Whether a file begins with the mark of sealed files, of whatever version. False also if it
/// cannot be read.
NORVIK_COMMON_API bool IsSealedFile(const boost::filesystem::path& file);

}  // namespace Norvik::Common
