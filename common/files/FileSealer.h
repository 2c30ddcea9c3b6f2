#pragma once

#include <boost/filesystem/path.hpp>
#include <stdexcept>

#include "common/Api.h"

namespace Norvik::Common {

/// A sealed file was cut or altered, or is none, or was sealed to another key.
class NORVIK_COMMON_API SealedFileError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
  ~SealedFileError() override;
};

/// Seals files to a public key and opens them with the private one. Memory use does not depend on
/// the size of a file. Format: docs/outbox-format.md.
class NORVIK_COMMON_API FileSealer {
 public:
  /// @param keyFolder holds `server.pub`, or gets `agent.pub` and `agent.key` (mode 0600) of a new
  ///        pair at first use if there is no key of a server
  explicit FileSealer(boost::filesystem::path keyFolder);

  /// Raises `std::runtime_error` on failure; the target is replaced whole or not at all.
  void Seal(const boost::filesystem::path& source, const boost::filesystem::path& target) const;
  /// Writes the opened content to the target. Raises `SealedFileError`, leaving no target, or
  /// `std::runtime_error` if a file cannot be read or written or no private key is here.
  void Open(const boost::filesystem::path& source, const boost::filesystem::path& target) const;

 private:
  boost::filesystem::path keyFolder_;
};

/// Whether a file begins as sealed ones do. False if it cannot be read.
NORVIK_COMMON_API bool IsSealedFile(const boost::filesystem::path& file);

}  // namespace Norvik::Common
