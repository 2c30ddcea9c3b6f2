#pragma once

#include <stdexcept>
#include <string>

#include "common/Api.h"

namespace Norvik::Common {

// Host, module and libNorvikAgentCommon exchange C++ objects, whose layout may change with the
// second number of the version. So whoever uses the library compares the version that it was
// compiled with and that of the library which the process has loaded.

/// The version of these headers. Not `inline`: the loader would give the whole process one copy.
constexpr char BUILD_VERSION[] = "9.24.2";

/// The version of the loaded library.
NORVIK_COMMON_API const char* LibraryVersion();

/// A number of a version such as "9.24.2": the one at `place`, counted from 0.
constexpr int NumberOfVersion(const char* version, int place) {
  int number = 0;
  for (; *version != '\0' && place >= 0; ++version) {
    if (*version == '.') {
      --place;
    } else if (place == 0) {
      number = 10 * number + (*version - '0');
    }
  }
  return number;
}
constexpr int CONTRACT = NumberOfVersion(BUILD_VERSION, 0);
constexpr int LAYOUT = NumberOfVersion(BUILD_VERSION, 1);

/// A library has `present` for its own first two numbers only. So the system's loader refuses a
/// module that refers to that of other numbers, before any code of the module runs.
template <int FIRST, int SECOND>
struct LibraryOf {
  NORVIK_COMMON_API static const char present;
};
template <>
NORVIK_COMMON_API const char LibraryOf<CONTRACT, LAYOUT>::present;

/// For a host, in place of the loader's words: throws `std::runtime_error`, with one line that
/// names `user`, unless the version that the caller is compiled with and the loaded one have the
/// same first and second number. To be called before anything else of the library. `static`, for
/// the reason above.
static inline void RequireLibraryVersion(const std::string& user) {
  const std::string built = BUILD_VERSION;
  const std::string loaded = LibraryVersion();
  if (built.compare(0, built.rfind('.'), loaded, 0, loaded.rfind('.')) == 0) return;
  throw std::runtime_error(user + " was built with version " + built +
                           " of libNorvikAgentCommon and cannot use version " + loaded);
}

}  // namespace Norvik::Common
