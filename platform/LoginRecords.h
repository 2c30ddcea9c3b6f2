#pragma once

#include <string.h>
#include <utmpx.h>

#include <cstddef>
#include <mutex>
#include <string>

namespace Norvik::Platform {

/// A walk over the system's login records, from the first one on. All walks of a process share one
/// place, so another one waits until this object has gone.
class LoginRecords {
 public:
  LoginRecords();
  LoginRecords(const LoginRecords&) = delete;
  LoginRecords& operator=(const LoginRecords&) = delete;
  ~LoginRecords();

  /// The next record, valid until the call after this one; null behind the last.
  const utmpx* Next();

  /// Text of a fixed field of a record, which a full field does not end with a NUL.
  template <std::size_t size>
  static std::string TextOf(const char (&field)[size]) {
    return std::string(field, ::strnlen(field, size));
  }

 private:
  std::unique_lock<std::mutex> lock_;
};

}  // namespace Norvik::Platform
