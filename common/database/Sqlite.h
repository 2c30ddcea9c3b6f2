#pragma once

// SOCI uses SQLite's C interface inside the namespace `sqlite_api`. Up to SOCI 4.0 its header
// brings the interface in, from 4.1 on only some types of it. A source that includes this header
// must not include the plain <sqlite3.h>.
#include <cstdarg>

namespace sqlite_api {
#include <sqlite3.h>
}

#include <soci/soci.h>
#include <soci/sqlite3/soci-sqlite3.h>

#include <string>

namespace Norvik::Common {

/// An error that SQLite reported. SOCI's own class for it is made in another way by each of its
/// releases.
class SqliteError : public soci::soci_error {
 public:
  /// @param code SQLite's result, with or without its extended part
  SqliteError(const std::string& text, int code) : soci::soci_error(text), code_(code) {}

  /// The result without its extended part, such as SQLITE_BUSY.
  int Code() const { return code_ & 0xFF; }

 private:
  int code_;
};

}  // namespace Norvik::Common
