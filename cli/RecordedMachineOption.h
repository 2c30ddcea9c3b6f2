#pragma once

#include <boost/filesystem/path.hpp>
#include <memory>

namespace Norvik::Cli {

/// Whether a recorded Mac can stand for this machine: in every build but the product on a Mac.
bool HasRecordedMachines();

/// The Mac that a folder records stands for this machine as long as the returned object lives.
/// Returns null for an empty path. Throws `UsageError` if the folder does not exist or holds no
/// recording, or if a recording cannot be put in force.
std::shared_ptr<const void> UseRecordedMachine(const boost::filesystem::path& folder);

}  // namespace Norvik::Cli
