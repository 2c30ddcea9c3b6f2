#pragma once

#include <stdexcept>

namespace Norvik::Host {

/// The user asked for something that cannot be: a wrong option, key or value. Its text names the
/// option or key and what it wants, on one line.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace Norvik::Host
