#pragma once

#include <boost/filesystem/path.hpp>

#include "platform/FileDescriptor.h"

namespace Norvik::Host {

/// Where the agent of this user keeps its data unless it is told otherwise. Raises
/// `std::runtime_error` if the user has no home.
boost::filesystem::path DefaultDataFolder();
/// The home of this user. Raises `std::runtime_error` if there is none.
boost::filesystem::path HomeFolder();

// Files of the data folder.
inline constexpr char LOCK_FILE[] = "agent.lock";
inline constexpr char IDENTITY_FILE[] = "identity.json";
inline constexpr char STATUSES_FILE[] = "statuses.jsonl";
inline constexpr char CONFIGURATION_FILE[] = "configuration.json";
inline constexpr char LOG_FOLDER[] = "log";
inline constexpr char LOG_FILE[] = "agent.log";
inline constexpr char KEY_FOLDER[] = "keys";

/// Keeps other agents away from a data folder while it lives; the end of the process frees it in
/// any case. Raises `std::runtime_error` if another process has it.
class DataFolderLock {
 public:
  /// @param folder must exist
  explicit DataFolderLock(const boost::filesystem::path& folder);

 private:
  Platform::FileDescriptor file_;
};

}  // namespace Norvik::Host
