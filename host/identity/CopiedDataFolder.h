#pragma once

#include <boost/filesystem/path.hpp>
#include <string>

namespace Norvik::Host {

/// Makes a new data folder of one that was copied from another machine: removes the identity, the
/// database, the documents and the states of that machine, and logs a warning. Keeps the
/// configuration, the keys and the log. Does nothing if one of the two UUIDs is unknown. Call it
/// with the folder locked, before its files are opened. Throws what removing a file throws.
/// @param platformUuid of this machine
void ForgetOtherMachine(const boost::filesystem::path& folder, const std::string& platformUuid);

}  // namespace Norvik::Host
