#pragma once

#include <boost/filesystem/path.hpp>
#include <memory>

#include "common/database/Connection.h"

namespace Norvik::Common {

/// Opens the agent's database file, or makes it, readable by its owner only; checks it, and brings
/// its schema up to date.
///
/// A damaged file is put aside and `CorruptDatabaseError` raised; any other failure raises
/// `std::runtime_error` and leaves the file where it is.
std::unique_ptr<Connection> OpenDatabaseFile(const boost::filesystem::path& file);

}  // namespace Norvik::Common
