#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <unordered_map>

#include "platform/BulkDirectory.h"

namespace Norvik::Platform {

enum class EntryKind { Unknown, File, Folder, Link, Other };

/// Metadata of one entry. A link is not followed.
struct EntryMetadata {
  EntryKind kind = EntryKind::Unknown;
  long long size = 0;              ///< bytes of a file; 0 of all else
  long long lastModification = 0;  ///< whole seconds since the epoch, negative before it
};

/// One entry as its folder lists it.
struct DirectoryEntry {
  const char* name = nullptr;             ///< valid until the reader's next call
  EntryKind kind = EntryKind::Unknown;    ///< unknown if the file system does not store it here
  std::optional<EntryMetadata> metadata;  ///< if they were read with the name
};

/// How folders are read.
struct ReadingWay {
  /// Gives the metadata with the names, where the file system does not refuse. Empty: names and
  /// kinds are listed, and the metadata of an entry take a call of its own.
  BulkCall bulk;
  std::size_t bytes = 65536;  ///< of the buffer of `bulk`, at first
};
/// With the `getattrlistbulk` of macOS, or the one that stands for it.
ReadingWay BulkWay();
/// The faster one on this system: on macOS in bulk, elsewhere not.
ReadingWay UsualWay();

/// Calls that a reader made.
struct ReadCalls {
  std::uint64_t bulk = 0;      ///< for many entries with their metadata
  std::uint64_t metadata = 0;  ///< for the metadata of a single entry
};

/// Reads one folder after the other, in the order of the file system, without "." and "..". On
/// Linux it makes no metadata call for a folder. Use it on one thread.
class DirectoryReader {
 public:
  explicit DirectoryReader(const ReadingWay& way = UsualWay());
  DirectoryReader(const DirectoryReader&) = delete;
  DirectoryReader& operator=(const DirectoryReader&) = delete;
  ~DirectoryReader();

  /// Leaves the former folder. Throws `boost::filesystem::filesystem_error`.
  void Open(const std::string& folder);
  /// False after the last entry, and after a read error: `error` distinguishes the two, and no
  /// further entry follows either.
  bool Next(DirectoryEntry& entry, std::error_code& error);
  /// Metadata of an entry of the open folder: those that it came with, or read by one call.
  EntryMetadata ReadMetadata(const DirectoryEntry& entry, std::error_code& error);

  ReadCalls Calls() const;

 private:
  struct Stream;

  bool NextOfList(DirectoryEntry& entry, std::error_code& error);
  void CompleteEntry(DirectoryEntry& entry);
  EntryKind ListedKind(const char* name);

  std::string folder_;  ///< the open one
  std::unique_ptr<Stream> stream_;
  std::unique_ptr<BulkDirectory> bulk_;  ///< null if folders are not read in bulk
  bool isInBulk_ = false;                ///< the open folder is
  /// What the open folder lists, once an entry of it could not be read in either way.
  std::optional<std::unordered_map<std::string, EntryKind>> listed_;
  std::uint64_t metadataCalls_ = 0;
};

}  // namespace Norvik::Platform
