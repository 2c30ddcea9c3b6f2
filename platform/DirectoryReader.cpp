#include "platform/DirectoryReader.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <boost/filesystem/exception.hpp>
#include <boost/system/error_code.hpp>
#include <cerrno>

#include "platform/FileDescriptor.h"

namespace Norvik::Platform {

namespace {

EntryKind KindOfType(unsigned char type) {
  switch (type) {
    case DT_UNKNOWN:
      return EntryKind::Unknown;
    case DT_REG:
      return EntryKind::File;
    case DT_DIR:
      return EntryKind::Folder;
    case DT_LNK:
      return EntryKind::Link;
    default:
      return EntryKind::Other;
  }
}

EntryKind KindOfMode(mode_t mode) {
  if (S_ISREG(mode)) return EntryKind::File;
  if (S_ISDIR(mode)) return EntryKind::Folder;
  return S_ISLNK(mode) ? EntryKind::Link : EntryKind::Other;
}

bool IsFolderItself(const char* name) {
  return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

FileDescriptor OpenFolder(const std::string& folder) {
  FileDescriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK));
  if (!opened.IsOpen()) {
    throw boost::filesystem::filesystem_error(
        "directory_iterator", folder,
        boost::system::error_code(errno, boost::system::system_category()));
  }
  return opened;
}

}  // namespace

#ifdef __linux__

// The C library reads the metadata of each folder that it opens; this does not.
struct DirectoryReader::Stream {
  void Open(const std::string& folder) {
    descriptor = OpenFolder(folder);
    position = length = 0;
  }
  int Descriptor() const { return descriptor.Get(); }

  const dirent64* Read() {
    if (position >= length) {
      const ssize_t got = ::getdents64(descriptor.Get(), buffer, sizeof buffer);
      position = 0;
      length = got > 0 ? static_cast<std::size_t>(got) : 0;
      // A folder that was removed meanwhile has ended, as for `readdir`.
      errno = got < 0 && errno != ENOENT ? errno : 0;
      if (length == 0) return nullptr;
    }
    const auto* const entry = reinterpret_cast<const dirent64*>(buffer + position);
    position += entry->d_reclen;
    return entry;
  }

  FileDescriptor descriptor;
  std::size_t position = 0;
  std::size_t length = 0;
  alignas(dirent64) char buffer[32768];
};

#else

struct DirectoryReader::Stream {
  void Open(const std::string& folder) {
    FileDescriptor opened = OpenFolder(folder);
    handle.reset(::fdopendir(opened.Get()));
    if (handle) opened.Release();
  }
  int Descriptor() const { return ::dirfd(handle.get()); }

  const dirent* Read() {
    errno = handle ? 0 : ENOMEM;
    return handle ? ::readdir(handle.get()) : nullptr;
  }

  struct Closer {
    void operator()(DIR* directory) const { ::closedir(directory); }
  };
  std::unique_ptr<DIR, Closer> handle;
};

#endif

DirectoryReader::DirectoryReader() : stream_(std::make_unique<Stream>()) {}

DirectoryReader::~DirectoryReader() = default;

void DirectoryReader::Open(const std::string& folder) { stream_->Open(folder); }

bool DirectoryReader::Next(DirectoryEntry& entry, std::error_code& error) {
  while (const auto* const found = stream_->Read()) {
    if (IsFolderItself(found->d_name)) continue;
    entry.name = found->d_name;
    entry.kind = KindOfType(found->d_type);
    return true;
  }
  error.assign(errno, std::generic_category());
  return false;
}

EntryMetadata DirectoryReader::ReadMetadata(const char* name, std::error_code& error) const {
  struct stat status {};
  if (::fstatat(stream_->Descriptor(), name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
    error.assign(errno, std::generic_category());
    return {};
  }
  error.clear();
  return {KindOfMode(status.st_mode), static_cast<long long>(status.st_size),
          static_cast<long long>(status.st_mtime)};
}

}  // namespace Norvik::Platform
