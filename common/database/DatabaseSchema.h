#pragma once

#include "common/database/Connection.h"

namespace Norvik::Common {

/// The version of the schema that this program creates, as stored in `PRAGMA user_version`.
int NewestSchemaVersion();

/// Throws `std::runtime_error` if this program does not know the version of the file's schema.
/// Writes nothing.
void CheckSchemaVersion(Connection& connection);

/// Brings the file's schema to the newest version in one transaction. Processes that start at the
/// same time may call it in parallel: the first does the work.
void UpgradeSchema(Connection& connection);

}  // namespace Norvik::Common
