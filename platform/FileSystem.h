#pragma once

#include <string>

#include "platform/FileDescriptor.h"

namespace Norvik::Platform {

// Failures throw `std::system_error`; if a path was given, the text has it.

/// Throws the error of a number as in `errno`. `what` says what failed.
[[noreturn]] void ThrowSystemError(int error, const std::string& what);

/// Opens an existing regular file for reading. Throws for a link, which is not followed, and for a
/// folder or a pipe, at which it does not wait.
FileDescriptor OpenRegularFile(const std::string& path);

/// Reads up to `size` bytes and returns how many, fewer only at the end of the file.
std::size_t ReadFull(const FileDescriptor& file, char* buffer, std::size_t size);
/// Writes all `size` bytes.
void WriteAll(const FileDescriptor& file, const char* data, std::size_t size);

/// Returns when the file's content is on the disk, as far as the system can ensure that.
void SyncFile(const FileDescriptor& file);
/// The same for the entries of a folder. Errors are ignored, since not every file system can do it.
void SyncFolder(const std::string& folder);

}  // namespace Norvik::Platform
