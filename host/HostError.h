#pragma once

#include <stdexcept>
#include <string>

namespace Norvik::Host {

/// The user gave an invalid option, key or value. The text is one line that names it and says what
/// is expected.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The text of an exception on one line. For a file system error: the file and the reason, without
/// the words of the library.
std::string ReasonOf(const std::exception& error);

/// The same of what an action threw, never empty.
std::string FailureOf(const std::exception& error);

}  // namespace Norvik::Host
