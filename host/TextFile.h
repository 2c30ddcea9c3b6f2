#pragma once

#include <boost/filesystem/path.hpp>
#include <cstddef>
#include <string>

namespace Norvik::Host {

/// Content of a file of this agent or its user. Raises `std::runtime_error`, naming the file, if it
/// cannot be read or is larger than the limit.
std::string ReadTextFile(const boost::filesystem::path& file, std::size_t limit = 1 << 20);

/// Replaces the file whole or not at all, mode 0600. Raises `std::runtime_error`, naming
/// the file.
void WriteTextFile(const boost::filesystem::path& file, const std::string& text);

/// Text on one line: line ends and other control characters become blanks.
std::string OnOneLine(std::string text);

}  // namespace Norvik::Host
