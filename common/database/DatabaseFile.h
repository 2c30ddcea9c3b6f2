#pragma once

#include <boost/filesystem/path.hpp>
#include <memory>

#include "common/database/ConnectionPool.h"

namespace Norvik::Common {

/// Opens the agent's database file, or makes it, readable by its owner only; checks it, and brings
/// its schema up to date.
///
/// A damaged file is put aside and `CorruptDatabaseError` raised; any other failure raises
/// `std::runtime_error` and leaves the file where it is.
std::shared_ptr<ConnectionPool> OpenDatabaseFile(const boost::filesystem::path& file);

/// Opens a database file that is there, beside its agent or without one, for connections that only
/// read: it is checked, but nothing is mended, put aside or brought up to date. Raises
/// `std::runtime_error` with the reason, also for a damaged file.
std::shared_ptr<ConnectionPool> OpenDatabaseFileToRead(const boost::filesystem::path& file);

}  // namespace Norvik::Common
