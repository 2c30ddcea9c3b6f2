#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <system_error>

namespace Norvik::Platform {

enum class EntryKind { Unknown, File, Folder, Link, Other };

/// One entry of a folder, as the folder itself tells it.
struct DirectoryEntry {
  const char* name = nullptr;           ///< belongs to the reader, until its next call
  EntryKind kind = EntryKind::Unknown;  ///< unknown where the file system does not tell
};

/// Metadata of one entry, got by one call. A link is not followed.
struct EntryFacts {
  EntryKind kind = EntryKind::Unknown;
  long long size = 0;              ///< bytes
  long long lastModification = 0;  ///< whole seconds since the epoch, negative before it
};

/// What all readers of this process have done so far.
struct ReadCounts {
  std::uint64_t folders = 0;    ///< opened
  std::uint64_t questions = 0;  ///< for the metadata of an entry
};

/// Reads one folder after the other, in the order that the file system gives, without "." and "..",
/// and asks for nothing but the entries: on Linux no call goes to an entry, nor a metadata call to
/// the folder. Use it on one thread.
class DirectoryReader {
 public:
  DirectoryReader();
  DirectoryReader(const DirectoryReader&) = delete;
  DirectoryReader& operator=(const DirectoryReader&) = delete;
  ~DirectoryReader();

  /// Leaves the former folder. Raises `boost::filesystem::filesystem_error`.
  void Open(const std::string& folder);
  /// False at the end of the folder, and when reading on fails: then the error is set, and no
  /// further entry comes.
  bool Next(DirectoryEntry& entry, std::error_code& error);
  /// Metadata of an entry of the open folder.
  EntryFacts Ask(const char* name, std::error_code& error) const;

  /// From any thread.
  static ReadCounts Counts();

 private:
  struct Stream;
  std::unique_ptr<Stream> stream_;
};

}  // namespace Norvik::Platform
