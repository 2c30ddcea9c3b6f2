#pragma once

#include <boost/filesystem/path.hpp>
#include <cstddef>
#include <string>

#include "common/Api.h"

namespace Norvik::Common {

/// The content of a file, byte for byte. A symbolic link is followed and a pipe is read to its end,
/// since users name such files. Throws `std::runtime_error`, with the file's name in its text, if
/// the file cannot be read or holds more than `limit` bytes.
NORVIK_COMMON_API std::string ReadTextFile(const boost::filesystem::path& file,
                                           std::size_t limit = 1 << 20);

/// Replaces the file whole or not at all, mode 0600, with its content on the disk. Throws
/// `std::runtime_error`, with the file's name in its text.
NORVIK_COMMON_API void WriteTextFile(const boost::filesystem::path& file, const std::string& text);

}  // namespace Norvik::Common
