#pragma once

#include "receiver/database/Session.h"

namespace Norvik::Receiver {

/// Creates the tables of an empty database and brings those of an older version up to date. Throws
/// `std::runtime_error`, and changes nothing, if a newer version has made them.
void PrepareSchema(Session& session);
/// The same without a change: throws as well if the database is empty or of an older version.
void CheckSchema(Session& session);

}  // namespace Norvik::Receiver
