#include "platform/DirectoryReader.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/attr.h>
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

ReadingWay UsualWay() { return {}; }

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

ReadingWay UsualWay() { return BulkWay(); }

// A folder that is read in bulk needs no stream of the C library.
struct DirectoryReader::Stream {
  void Open(const std::string& folder) {
    handle.reset();
    descriptor = OpenFolder(folder);
  }
  int Descriptor() const { return handle ? ::dirfd(handle.get()) : descriptor.Get(); }

  const dirent* Read() {
    if (!handle) {
      handle.reset(::fdopendir(descriptor.Get()));
      if (!handle) return nullptr;
      descriptor.Release();
    }
    errno = 0;
    return ::readdir(handle.get());
  }

  struct Closer {
    void operator()(DIR* directory) const { ::closedir(directory); }
  };
  FileDescriptor descriptor;  ///< until the stream owns it
  std::unique_ptr<DIR, Closer> handle;
};

#endif

ReadingWay BulkWay() { return {::getattrlistbulk}; }

DirectoryReader::DirectoryReader(const ReadingWay& way) : stream_(std::make_unique<Stream>()) {
  if (way.bulk) bulk_ = std::make_unique<BulkDirectory>(way.bulk, way.bytes);
}

DirectoryReader::~DirectoryReader() = default;

void DirectoryReader::Open(const std::string& folder) {
  stream_->Open(folder);
  folder_ = folder;
  listed_.reset();
  isInBulk_ = bulk_ != nullptr;
  if (isInBulk_) bulk_->Begin();
}

bool DirectoryReader::Next(DirectoryEntry& entry, std::error_code& error) {
  while (isInBulk_) {
    switch (bulk_->Next(stream_->Descriptor(), entry, error)) {
      case BulkDirectory::Outcome::Entry:
        if (IsFolderItself(entry.name)) break;
        if (entry.kind == EntryKind::Unknown) CompleteEntry(entry);
        return true;
      case BulkDirectory::Outcome::End:
      case BulkDirectory::Outcome::Failed:
        return false;
      case BulkDirectory::Outcome::Refused:
        isInBulk_ = false;
        ::lseek(stream_->Descriptor(), 0, SEEK_SET);
    }
  }
  return NextOfList(entry, error);
}

bool DirectoryReader::NextOfList(DirectoryEntry& entry, std::error_code& error) {
  entry.metadata.reset();
  while (const auto* const found = stream_->Read()) {
    if (IsFolderItself(found->d_name)) continue;
    entry.name = found->d_name;
    entry.kind = KindOfType(found->d_type);
    return true;
  }
  error.assign(errno, std::generic_category());
  return false;
}

/// Reads what the bulk did not have of an entry as if the folder were only listed.
void DirectoryReader::CompleteEntry(DirectoryEntry& entry) {
  std::error_code error;
  const EntryMetadata metadata = ReadMetadata(entry, error);
  entry.kind = error ? ListedKind(entry.name) : metadata.kind;
  if (!error) entry.metadata = metadata;
}

EntryKind DirectoryReader::ListedKind(const char* name) {
  if (!listed_) {
    listed_.emplace();
    DirectoryReader list{ReadingWay()};
    DirectoryEntry entry;
    std::error_code error;
    try {
      list.Open(folder_);
      while (list.Next(entry, error)) listed_->emplace(entry.name, entry.kind);
    } catch (const boost::filesystem::filesystem_error&) {
      // It was removed meanwhile: nothing is known of its entries.
    }
  }
  const auto found = listed_->find(name);
  return found == listed_->end() ? EntryKind::Unknown : found->second;
}

EntryMetadata DirectoryReader::ReadMetadata(const DirectoryEntry& entry, std::error_code& error) {
  error.clear();
  if (entry.metadata) return *entry.metadata;
  ++metadataCalls_;
  struct stat status {};
  if (::fstatat(stream_->Descriptor(), entry.name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
    error.assign(errno, std::generic_category());
    return {};
  }
  return {KindOfMode(status.st_mode),
          S_ISREG(status.st_mode) ? static_cast<long long>(status.st_size) : 0,
          static_cast<long long>(status.st_mtime)};
}

ReadCalls DirectoryReader::Calls() const { return {bulk_ ? bulk_->Calls() : 0, metadataCalls_}; }

}  // namespace Norvik::Platform
