#pragma once

#include <boost/filesystem/path.hpp>
#include <map>
#include <string>
#include <vector>

namespace Norvik::Host {

/// Copies files of the machine below `root`: files and folders with their times, links to files
/// with what they lead to, folders with the files directly in them. Returns one line for each file
/// that is too large or cannot be read: the recording is without it.
/// @param asked absolute paths, each with whether it was opened; if its existence alone was asked
///   for, it becomes an empty file or folder
std::vector<std::string> CopyMachineFiles(const std::map<std::string, bool>& asked,
                                          const boost::filesystem::path& root);

}  // namespace Norvik::Host
