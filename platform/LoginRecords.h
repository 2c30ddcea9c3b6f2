#pragma once

#include <string.h>
#include <utmpx.h>

#include <cstddef>
#include <memory>
#include <mutex>
#include <string>

#include "platform/LocalAccounts.h"

namespace Norvik::Platform {

/// Iterates over the login records of the system, or of the recorded machine that is in force, from
/// the first one on. A process has only one
/// position in them, so a second object waits until this one is destroyed.
class LoginRecords {
 public:
  LoginRecords();
  LoginRecords(const LoginRecords&) = delete;
  LoginRecords& operator=(const LoginRecords&) = delete;
  ~LoginRecords();

  /// The next record, valid until the next call; null after the last one.
  const utmpx* Next();

  /// The text of a field of fixed size, which ends with a NUL only if it is not full.
  template <std::size_t size>
  static std::string TextOf(const char (&field)[size]) {
    return std::string(field, ::strnlen(field, size));
  }

 private:
  std::unique_lock<std::mutex> lock_;
  const std::shared_ptr<const MachineAccounts> recorded_ = RecordedAccounts();
  std::size_t position_ = 0;  ///< of the next recorded one
};

}  // namespace Norvik::Platform
