#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/filesystem/operations.hpp>
#include <cstdio>
#include <vector>

#include "common/database/AgentDatabase.h"
#include "host/data/DataFolder.h"
#include "host/health/Checks.h"

namespace Norvik::Host {

namespace {

namespace fs = boost::filesystem;
using std::chrono::system_clock;

constexpr std::uintmax_t MEGABYTE = 1'000'000;
constexpr std::uintmax_t TOO_LITTLE = 100 * MEGABYTE;
constexpr std::uintmax_t LITTLE = 1000 * MEGABYTE;
constexpr double LITTLE_PERCENT = 5;
constexpr std::uintmax_t ROOM_FOR_CHANGES = 64 * MEGABYTE;
/// Twice what the log rotates at.
constexpr std::uintmax_t LONG_LOG = 10 << 20;
constexpr std::chrono::hours LEFT_AFTER(1);  ///< a file in use is younger
constexpr mode_t OF_OTHERS = S_IRWXG | S_IRWXO;
constexpr mode_t WRITABLE_BY_OTHERS = S_IWGRP | S_IWOTH;

fs::path DatabaseFile(const Examined& examined) {
  return examined.File(Common::SQLiteNames::SQLITE_CURRENT_DATABASE_NAME);
}

std::string OctalOf(mode_t mode) {
  char text[8];
  std::snprintf(text, sizeof(text), "%04o", static_cast<unsigned int>(mode & 07777));
  return text;
}

/// The finding of a check that needs the folder, if it cannot be read.
boost::optional<Finding> NoFolder(const Examined& examined) {
  const fs::path& folder = examined.Options().dataFolder;
  switch (ReadablePresenceOf(folder)) {
    case Presence::HIDDEN:
      return UnreadableFinding(folder.string());
    case Presence::MISSING:
      return Finding{Outcome::UNKNOWN, "there is no data folder", START_AGENT};
    case Presence::THERE:
      break;
  }
  return boost::none;
}

fs::space_info SpaceAt(fs::path folder) {
  while (!fs::exists(folder) && folder.has_parent_path()) folder = folder.parent_path();
  return fs::space(folder);
}

struct OldFiles {
  std::size_t count = 0;
  std::uintmax_t bytes = 0;
  std::string first;
};

OldFiles FilesNamed(const fs::path& folder, bool (*isWanted)(const std::string& name),
                    system_clock::time_point changedBefore) {
  OldFiles found;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    const std::string name = entry.path().filename().string();
    boost::system::error_code gone;
    const auto time = fs::last_write_time(entry.path(), gone);
    if (!isWanted(name) || gone || system_clock::from_time_t(time) > changedBefore) continue;
    ++found.count;
    const auto bytes = fs::is_directory(entry.symlink_status()) ? 0 : fs::file_size(entry, gone);
    if (!gone) found.bytes += bytes;
    found.first = found.first.empty() ? name : std::min(found.first, name);
  }
  return found;
}

bool IsLeftover(const std::string& name) {
  return boost::starts_with(name, ".rehearsal-") ||
         (boost::starts_with(name, ".") && name.find(".new-") != std::string::npos);
}

bool IsCorruptDatabase(const std::string& name) {
  return name.find(".sqlite3.corrupt-") != std::string::npos && !boost::ends_with(name, "-wal") &&
         !boost::ends_with(name, "-shm");
}

std::string CountText(const OldFiles& files) {
  return std::to_string(files.count) + " (" + SizeText(files.bytes) + "), such as " + files.first;
}

}  // namespace

Finding FindDataFolder(const Examined& examined) {
  const fs::path& folder = examined.Options().dataFolder;
  const std::string none = "no agent was set up in " + folder.string() + ": ";
  switch (ReadablePresenceOf(folder)) {
    case Presence::HIDDEN:
      return UnreadableFinding(folder.string());
    case Presence::MISSING:
      return {Outcome::WARNING, none + "there is no such folder"};
    case Presence::THERE:
      break;
  }
  if (!fs::is_directory(folder)) return {Outcome::ERROR, folder.string() + " is no folder"};
  if (fs::is_empty(folder)) return {Outcome::WARNING, none + "the folder is empty"};
  const bool isUsed =
      fs::exists(examined.File(IDENTITY_FILE)) || fs::exists(DatabaseFile(examined));
  if (!isUsed) return {Outcome::WARNING, none + "it has neither an identity nor a database"};
  return {Outcome::OK, folder.string()};
}

Finding FindDataFolderRights(const Examined& examined) {
  const fs::path& folder = examined.Options().dataFolder;
  struct stat status {};
  if (::stat(folder.c_str(), &status) != 0) {
    return NoFolder(examined).value_or(UnreadableFinding(folder.string()));
  }
  const std::string is = folder.string() + " has mode " + OctalOf(status.st_mode) +
                         " and belongs to user " + std::to_string(status.st_uid);
  if ((status.st_mode & WRITABLE_BY_OTHERS) != 0) {
    return {Outcome::ERROR, is + ": others may change what the agent does"};
  }
  if ((status.st_mode & OF_OTHERS) != 0) return {Outcome::WARNING, is + ": others may read it"};
  if (::geteuid() == 0 && status.st_uid != 0) {
    return {Outcome::WARNING, is + ": that user may read and change it"};
  }
  return {Outcome::OK, is};
}

Finding FindDataFolderWritable(const Examined& examined) {
  if (auto none = NoFolder(examined)) return *none;
  const std::string folder = examined.Options().dataFolder.string();
  struct statvfs system {};
  if (::statvfs(folder.c_str(), &system) == 0 && (system.f_flag & ST_RDONLY) != 0) {
    return {Outcome::ERROR, folder + " is on a volume that is mounted read-only"};
  }
  struct stat status {};
  if (::stat(folder.c_str(), &status) == 0 && ::geteuid() != 0 && ::geteuid() != status.st_uid) {
    return {Outcome::UNKNOWN, "only root and the folder's owner may write to " + folder,
            "run the check as one of them"};
  }
  if (::access(folder.c_str(), W_OK | X_OK) == 0) return {Outcome::OK, folder};
  return {Outcome::ERROR, "this user cannot write to " + folder};
}

Finding FindDiskSpace(const Examined& examined) {
  const auto space = SpaceAt(examined.Options().dataFolder);
  const double percent = space.capacity == 0 ? 0
                                             : 100.0 * static_cast<double>(space.available) /
                                                   static_cast<double>(space.capacity);
  char share[32];
  std::snprintf(share, sizeof(share), "%.1f", percent);
  const std::string text = SizeText(space.available) + " free, " + share + " % of the volume";
  if (space.available < TOO_LITTLE) return {Outcome::ERROR, text};
  if (space.available < LITTLE || percent < LITTLE_PERCENT) {
    return {Outcome::WARNING, text, "", std::string()};
  }
  return {Outcome::OK, text};
}

Finding FindDatabaseRoom(const Examined& examined) {
  if (auto none = NoFolder(examined)) return *none;
  boost::system::error_code missing;
  const auto size = fs::file_size(DatabaseFile(examined), missing);
  // A scan is stored beside the last one, and its log may get as long.
  const std::uintmax_t needed = (missing ? 0 : size) + ROOM_FOR_CHANGES;
  const auto available = SpaceAt(examined.Options().dataFolder).available;
  const std::string text =
      "the database may need " + SizeText(needed) + " more, " + SizeText(available) + " are free";
  return {available < needed ? Outcome::WARNING : Outcome::OK, text};
}

Finding FindLeftovers(const Examined& examined) {
  if (auto none = NoFolder(examined)) return *none;
  const OldFiles files =
      FilesNamed(examined.Options().dataFolder, IsLeftover, examined.Options().now - LEFT_AFTER);
  if (files.count == 0) return {Outcome::OK, "none"};
  return {Outcome::INFORMATION, "temporary files that no run has removed: " + CountText(files)};
}

Finding FindCorruptDatabases(const Examined& examined) {
  if (auto none = NoFolder(examined)) return *none;
  const OldFiles files =
      FilesNamed(examined.Options().dataFolder, IsCorruptDatabase, system_clock::time_point::max());
  if (files.count == 0) return {Outcome::OK, "none"};
  return {Outcome::WARNING, "databases were damaged and put aside: " + CountText(files)};
}

Finding FindLog(const Examined& examined) {
  if (auto none = NoFolder(examined)) return *none;
  const fs::path file = examined.File(LOG_FOLDER) / LOG_FILE;
  switch (ReadablePresenceOf(file)) {
    case Presence::HIDDEN:
      return UnreadableFinding(file.string());
    case Presence::MISSING:
      return {Outcome::INFORMATION, "there is no log yet"};
    case Presence::THERE:
      break;
  }
  if (!fs::is_regular_file(file)) return {Outcome::ERROR, file.string() + " is no file"};
  if (::access(file.c_str(), W_OK) != 0) {
    return {Outcome::WARNING, "this user cannot write to " + file.string()};
  }
  const auto last = system_clock::from_time_t(fs::last_write_time(file));
  return {Outcome::OK, file.string() + ", last written at " + TimeText(last)};
}

Finding FindLogRotation(const Examined& examined) {
  const fs::path file = examined.File(LOG_FOLDER) / LOG_FILE;
  switch (PresenceOf(file)) {
    case Presence::HIDDEN:
      return UnreadableFinding(file.string());
    case Presence::MISSING:
      return {Outcome::OK, "there is no log"};
    case Presence::THERE:
      break;
  }
  const auto size = fs::file_size(file);
  return {size > LONG_LOG ? Outcome::WARNING : Outcome::OK, "the log has " + SizeText(size)};
}

}  // namespace Norvik::Host
