#pragma once

#include <boost/filesystem/path.hpp>
#include <memory>

namespace Norvik::Cli {

/// Whether a recorded Mac can stand for this machine: on every system but a Mac itself.
bool HasRecordedMachines();

/// Has the Mac that a folder records stand for this machine as long as the answer lives. Null for
/// an empty path. Raises `UsageError` if there is no such folder.
std::shared_ptr<const void> UseRecordedMachine(const boost::filesystem::path& folder);

}  // namespace Norvik::Cli
