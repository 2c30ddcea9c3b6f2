#pragma once

namespace Norvik::Common {

/// Whether SOCI calls the same copy of SQLite as the sources of this project, which use the handles
/// that SOCI opens. Two copies in one process do not see each other's locks and may differ in the
/// layout of a handle.
bool SociUsesOurSqlite();

}  // namespace Norvik::Common
