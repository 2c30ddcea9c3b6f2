#pragma once

#include <unistd.h>

#include <utility>

namespace Norvik::Platform {

/// Owns a file descriptor and closes it; -1 while it owns no descriptor.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
  FileDescriptor(FileDescriptor&& other) noexcept
      : descriptor_(std::exchange(other.descriptor_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    if (this != &other) {
      Close();
      descriptor_ = std::exchange(other.descriptor_, -1);
    }
    return *this;
  }
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() { Close(); }

  int Get() const { return descriptor_; }
  bool IsOpen() const { return descriptor_ >= 0; }
  /// Gives the descriptor to the caller, who has to close it.
  int Release() { return std::exchange(descriptor_, -1); }
  void Close() {
    if (descriptor_ >= 0) ::close(std::exchange(descriptor_, -1));
  }

 private:
  int descriptor_ = -1;
};

/// Both ends of a pipe, closed on exec. Their numbers lie above those of the standard channels.
struct Pipe {
  FileDescriptor read;
  FileDescriptor write;

  /// False, with `errno` set, if no pipe could be made.
  bool Open();
};

}  // namespace Norvik::Platform
