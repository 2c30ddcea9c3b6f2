#pragma once

#include <boost/filesystem/path.hpp>

#include "host/support/BundleFile.h"

namespace Norvik::Host {

/// Adds the configuration, the last documents, the tables of the database and the logs of a data
/// folder, which may be in use, damaged or missing. Nothing is changed there. Keys, the identity
/// and the outbox are left alone, and so are archives and what is neither JSON nor text; what
/// cannot be read is noted.
/// @param limit of bytes of each log; its last lines count
void AddDataFolder(const boost::filesystem::path& folder, std::size_t limit,
                   BundleContent& content);

}  // namespace Norvik::Host
