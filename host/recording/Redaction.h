#pragma once

#include <boost/filesystem/path.hpp>
#include <string>

namespace Norvik::Host {

/// Replaces serial numbers, names of users and hosts, addresses, UUIDs and key material in all
/// files of a recording and in the names below `root`, whatever the format: texts, XML and binary
/// property lists, bytes in Base64 and in hexadecimal digits. Displays keep a valid checksum.
/// Returns the number of values. Throws if a file cannot be read or written.
/// @param document of the inventory that was recorded; empty without one
std::size_t RedactRecording(const boost::filesystem::path& recording, const std::string& document);

}  // namespace Norvik::Host
