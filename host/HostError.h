#pragma once

#include <stdexcept>
#include <string>

namespace Norvik::Host {

/// The user asked for something that cannot be: a wrong option, key or value. Its text names the
/// option or key and what it wants, on one line.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What an exception says, on one line. One of a file names the file and the reason, without the
/// library's own words.
std::string ReasonOf(const std::exception& error);

}  // namespace Norvik::Host
