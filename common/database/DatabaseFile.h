#pragma once

#include <boost/filesystem/path.hpp>
#include <memory>

#include "common/database/ConnectionPool.h"

namespace Norvik::Common {

/// Opens the agent's database file, or creates it, readable by its owner only; checks it, and
/// brings its schema up to date. A damaged file is renamed and `CorruptDatabaseError` thrown; any
/// other failure throws `std::runtime_error` and leaves the file in its place.
std::shared_ptr<ConnectionPool> OpenDatabaseFile(const boost::filesystem::path& file);

/// Opens an existing database file for connections that only read, whether an agent uses it or not.
/// The file is checked, but never repaired, renamed or upgraded. Throws `std::runtime_error` with
/// the reason, also for a damaged file.
std::shared_ptr<ConnectionPool> OpenDatabaseFileToRead(const boost::filesystem::path& file);

}  // namespace Norvik::Common
