#pragma once

#include <boost/filesystem/path.hpp>

#include "platform/FileDescriptor.h"

namespace Norvik::Host {

/// The data folder of this user's agent, unless an option names another. Throws
/// `std::runtime_error` if the user has no home folder.
boost::filesystem::path DefaultDataFolder();
/// The home folder of this user. Throws `std::runtime_error` if the user has no home.
boost::filesystem::path HomeFolder();

// Files and folders in the data folder.
inline constexpr char LOCK_FILE[] = "agent.lock";
inline constexpr char IDENTITY_FILE[] = "identity.json";
inline constexpr char STATUSES_FILE[] = "statuses.jsonl";
inline constexpr char ANSWERS_FOLDER[] = "answers";
inline constexpr char CONFIGURATION_FILE[] = "configuration.json";
inline constexpr char LOG_FOLDER[] = "log";
inline constexpr char LOG_FILE[] = "agent.log";
inline constexpr char KEY_FOLDER[] = "keys";

/// Locks a data folder against other agents while it exists. The end of the process releases the
/// lock in any case.
class DataFolderLock {
 public:
  /// Throws `std::runtime_error` if another process holds the lock or the file cannot be opened.
  /// @param folder must exist
  explicit DataFolderLock(const boost::filesystem::path& folder);

 private:
  Platform::FileDescriptor file_;
};

}  // namespace Norvik::Host
