#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <system_error>

namespace Norvik::Platform {

enum class EntryKind { Unknown, File, Folder, Link, Other };

/// One entry as its folder lists it.
struct DirectoryEntry {
  const char* name = nullptr;           ///< valid until the reader's next call
  EntryKind kind = EntryKind::Unknown;  ///< unknown if the file system does not store it here
};

/// Metadata of one entry. A link is not followed.
struct EntryMetadata {
  EntryKind kind = EntryKind::Unknown;
  long long size = 0;              ///< bytes
  long long lastModification = 0;  ///< whole seconds since the epoch, negative before it
};

/// Reads one folder after the other, in the order of the file system, without "." and "..". It
/// reads the entries and nothing else: on Linux it makes no call for an entry, and no metadata call
/// for the folder. Use it on one thread.
class DirectoryReader {
 public:
  DirectoryReader();
  DirectoryReader(const DirectoryReader&) = delete;
  DirectoryReader& operator=(const DirectoryReader&) = delete;
  ~DirectoryReader();

  /// Leaves the former folder. Throws `boost::filesystem::filesystem_error`.
  void Open(const std::string& folder);
  /// False after the last entry, and after a read error: `error` distinguishes the two, and no
  /// further entry follows either.
  bool Next(DirectoryEntry& entry, std::error_code& error);
  /// Metadata of an entry of the open folder, read by one call.
  EntryMetadata ReadMetadata(const char* name, std::error_code& error) const;

 private:
  struct Stream;
  std::unique_ptr<Stream> stream_;
};

}  // namespace Norvik::Platform
