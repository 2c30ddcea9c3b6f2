#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "platform/FileDescriptor.h"

namespace Norvik::Host {

/// What tells a file's content from any other.
struct FileDigest {
  std::uint64_t size = 0;
  std::string sha256;  ///< 64 hexadecimal digits, in lower case
};

/// Reads the file from its beginning, and leaves it there. Raises `std::system_error`, and
/// `std::runtime_error` as soon as `stopped` is set.
FileDigest DigestOf(const Platform::FileDescriptor& file, const std::atomic<bool>& stopped);

}  // namespace Norvik::Host
