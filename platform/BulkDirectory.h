#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <system_error>

namespace Norvik::Platform {

struct DirectoryEntry;

/// A call with the arguments, the result and the `errno` of macOS's `getattrlistbulk`.
using BulkCall = std::function<int(int folder, void* wanted, void* buffer, std::size_t size,
                                   std::uint64_t options)>;

/// Unpacks what a `BulkCall` gives: entries with their metadata, many with each call. It has one
/// buffer, which grows to 64 KiB at most. Use it on one thread.
class BulkDirectory {
 public:
  enum class Outcome {
    Entry,
    End,      ///< after the last entry
    Failed,   ///< entries are missing; no further one follows
    Refused,  ///< nothing was read: the folder has to be read in another way
  };

  /// @param size of the buffer at first, in bytes
  BulkDirectory(BulkCall call, std::size_t size);

  /// A folder is read next.
  void Begin();
  /// Reads an entry of the folder. An entry that reports an error has no metadata, and its kind may
  /// be unknown.
  /// @param folder open for reading, and read by nobody else
  Outcome Next(int folder, DirectoryEntry& entry, std::error_code& error);
  /// How often the call was made.
  std::uint64_t Calls() const { return calls_; }

 private:
  int Fill(int folder);
  bool Unpack(DirectoryEntry& entry);
  Outcome Fail(int number, std::error_code& error);

  const BulkCall call_;
  std::size_t size_;
  std::unique_ptr<char[]> buffer_;
  std::size_t position_ = 0;  ///< of the next entry in the buffer
  int left_ = 0;              ///< entries in the buffer from there
  bool hasBegun_ = false;     ///< an entry of the folder was given
  bool hasEnded_ = false;     ///< no further entry follows
  std::uint64_t calls_ = 0;
};

}  // namespace Norvik::Platform
