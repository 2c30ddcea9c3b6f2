#include "common/database/OneSqlite.h"

#include <string>

#include "common/database/Sqlite.h"

namespace Norvik::Common {

bool SociUsesOurSqlite() {
  // A virtual file system is known only to the copy in which it is registered, and no handle of one
  // copy gets into the other.
  constexpr char NAME[] = "norvik-one-copy";
  const auto* const usual = sqlite_api::sqlite3_vfs_find(nullptr);
  if (!usual) return false;
  auto registered = *usual;
  registered.zName = NAME;
  if (sqlite_api::sqlite3_vfs_register(&registered, 0) != SQLITE_OK) return false;
  bool same = true;
  try {
    const soci::session session(soci::sqlite3, std::string("dbname=:memory: vfs=") + NAME);
  } catch (const soci::soci_error&) {
    same = false;
  }
  sqlite_api::sqlite3_vfs_unregister(&registered);
  return same;
}

}  // namespace Norvik::Common
