#pragma once

#include <string>

#include "platform/FileDescriptor.h"

namespace Norvik::Platform {

// What raises here raises `std::system_error`; what takes a path has it in the text.

/// Raises the error of a number, as `errno` holds it. The text says of what.
[[noreturn]] void RaiseSystemError(int error, const std::string& what);

/// Opens an existing regular file for reading; a link is not followed. Raises.
FileDescriptor OpenRegularFile(const std::string& path);

/// Reads up to `size` bytes, fewer only at the end of the file. Raises.
std::size_t ReadFull(const FileDescriptor& file, char* buffer, std::size_t size);
/// Raises.
void WriteAll(const FileDescriptor& file, const char* data, std::size_t size);

/// Has the file's content on the disk, as far as the system offers it. Raises.
void SyncFile(const FileDescriptor& file);
/// The same for the entries of a folder; a file system that cannot is passed over.
void SyncFolder(const std::string& folder);

}  // namespace Norvik::Platform
