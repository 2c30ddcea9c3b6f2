#include "common/database/DatabaseCopy.h"

#include <boost/filesystem/operations.hpp>
#include <stdexcept>

#include "common/database/DatabaseFile.h"

namespace Norvik::Common {

void CopyDatabase(const boost::filesystem::path& source, const boost::filesystem::path& target) {
  if (!boost::filesystem::exists(source)) {
    throw std::runtime_error("there is no database " + source.string());
  }
  const auto from = OpenDatabaseFileToRead(source)->Take();
  Connection to(target);
  auto* const backup = sqlite_api::sqlite3_backup_init(to.Handle(), "main", from->Handle(), "main");
  if (!backup) to.RaiseLastError(SQLITE_ERROR, "copy of " + source.string());
  sqlite_api::sqlite3_backup_step(backup, -1);
  const int code = sqlite_api::sqlite3_backup_finish(backup);
  if (code != SQLITE_OK) to.RaiseLastError(code, "copy of " + source.string());
}

}  // namespace Norvik::Common
