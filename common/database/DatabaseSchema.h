#pragma once

#include "common/database/Connection.h"

namespace Norvik::Common {

/// The version that this program makes, as `PRAGMA user_version` keeps it.
int NewestSchemaVersion();

/// Raises `std::runtime_error` if the file's schema is not one that this program knows. Writes
/// nothing.
void CheckSchemaVersion(Connection& connection);

/// Brings the file's schema to the newest version in one transaction. Processes that start
/// together may call it side by side.
void UpgradeSchema(Connection& connection);

}  // namespace Norvik::Common
