#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "platform/FileDescriptor.h"

namespace Norvik::Host {

/// Identifies the content of a file.
struct FileDigest {
  std::uint64_t size = 0;
  std::string sha256;  ///< 64 hexadecimal digits, in lower case
};

/// Reads the whole file, and sets its position back to the beginning. Throws `std::system_error` if
/// that fails, and `std::runtime_error` as soon as `stopped` is set.
FileDigest DigestOf(const Platform::FileDescriptor& file, const std::atomic<bool>& stopped);

}  // namespace Norvik::Host
