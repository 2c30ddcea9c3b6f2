#include <dirent.h>
#include <fcntl.h>
#include <sys/attr.h>
#include <sys/stat.h>
#include <sys/vnode.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

// The compat build of a Mac has the system's own call.

namespace {

constexpr attrgroup_t REQUIRED = ATTR_CMN_NAME | ATTR_CMN_RETURNED_ATTRS;
constexpr attrgroup_t IN_STATUS = ATTR_CMN_OBJTYPE | ATTR_CMN_MODTIME;

template <class Value>
void Append(std::string& bytes, const Value& value) {
  bytes.append(reinterpret_cast<const char*>(&value), sizeof(value));
}

fsobj_type_t TypeOf(mode_t mode) {
  switch (mode & S_IFMT) {
    case S_IFREG:
      return VREG;
    case S_IFDIR:
      return VDIR;
    case S_IFBLK:
      return VBLK;
    case S_IFCHR:
      return VCHR;
    case S_IFLNK:
      return VLNK;
    case S_IFSOCK:
      return VSOCK;
    case S_IFIFO:
      return VFIFO;
    default:
      return VNON;
  }
}

/// Appends the wanted attributes of an entry without an error, and adds them to `has`.
void AppendStatus(std::string& fields, attribute_set_t& has, const attrlist& wanted,
                  const struct stat& status) {
  has.commonattr |= wanted.commonattr & IN_STATUS;
  if (wanted.commonattr & ATTR_CMN_OBJTYPE) Append(fields, TypeOf(status.st_mode));
  if (wanted.commonattr & ATTR_CMN_MODTIME) Append(fields, status.st_mtim);
  // A folder has no attributes of files.
  if (!S_ISDIR(status.st_mode) && (wanted.fileattr & ATTR_FILE_DATALENGTH)) {
    has.fileattr |= ATTR_FILE_DATALENGTH;
    Append(fields, std::int64_t{status.st_size});
  }
  // There is room for a wanted error that did not occur, but after the other fields.
  if (wanted.commonattr & ATTR_CMN_ERROR) fields.append(sizeof(std::uint32_t), '\0');
}

/// An entry as the kernel packs it: its length, what it has, the fields, and the name at the end.
std::string Packed(const attrlist& wanted, const std::string& name, const struct stat& status,
                   int error) {
  attribute_set_t has = {};
  has.commonattr = REQUIRED;
  std::string fields;
  if (error != 0 && (wanted.commonattr & ATTR_CMN_ERROR)) {
    has.commonattr |= ATTR_CMN_ERROR;
    Append(fields, static_cast<std::uint32_t>(error));
  }
  const std::size_t place = fields.size();
  attrreference_t reference = {0, static_cast<std::uint32_t>(name.size() + 1)};
  Append(fields, reference);
  if (error == 0) AppendStatus(fields, has, wanted, status);
  reference.attr_dataoffset = static_cast<std::int32_t>(fields.size() - place);
  std::memcpy(&fields[place], &reference, sizeof(reference));
  fields += name;
  fields.append(4 - name.size() % 4, '\0');  // ends the text and aligns
  std::string packed;
  Append(packed, static_cast<std::uint32_t>(sizeof(std::uint32_t) + sizeof(has) + fields.size()));
  Append(packed, has);
  return packed + fields;
}

/// Where the entries go. An entry begins at a multiple of 8.
class Target {
 public:
  Target(void* buffer, std::size_t size) : next_(static_cast<char*>(buffer)), left_(size) {}

  /// False if there is no room.
  bool Add(std::string packed) {
    if (packed.size() > left_) return false;
    const std::size_t padded = (packed.size() + 7) / 8 * 8;
    if (padded <= left_) packed.resize(padded);
    const auto length = static_cast<std::uint32_t>(packed.size());
    std::memcpy(&packed[0], &length, sizeof(length));
    std::memcpy(next_, packed.data(), packed.size());
    next_ += packed.size();
    left_ -= packed.size();
    ++count_;
    return true;
  }
  int Count() const { return count_; }

 private:
  char* next_;
  std::size_t left_;
  int count_ = 0;
};

bool IsFolderItself(const char* name) {
  return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

/// False if the buffer has no room for the entry. One that is gone since is left out.
bool AddEntry(Target& target, const attrlist& wanted, int folder, const char* name) {
  struct stat status = {};
  const bool isRead = ::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) == 0;
  if (!isRead && errno == ENOENT) return true;
  return target.Add(Packed(wanted, name, status, isRead ? 0 : errno));
}

/// Whether the call fails before it reads an entry; sets `errno`.
bool IsRefused(int folder, const attrlist& wanted, std::uint64_t options) {
  if (wanted.bitmapcount != ATTR_BIT_MAP_COUNT || wanted.volattr != 0 || options != 0 ||
      (wanted.commonattr & REQUIRED) != REQUIRED) {
    errno = EINVAL;
    return true;
  }
  // More than names and kinds also needs the permission to search the folder.
  struct stat status;
  return ((wanted.commonattr & ATTR_CMN_MODTIME) || wanted.fileattr != 0) &&
         ::fstatat(folder, ".", &status, 0) != 0 && errno == EACCES;
}

}  // namespace

int getattrlistbulk(int folder, void* wanted, void* buffer, size_t size, uint64_t options) {
  const auto& attributes = *static_cast<const attrlist*>(wanted);
  if (IsRefused(folder, attributes, options)) return -1;
  Target target(buffer, size);
  alignas(dirent64) char entries[32768];
  for (;;) {
    off_t position = ::lseek(folder, 0, SEEK_CUR);
    const ssize_t length = ::getdents64(folder, entries, sizeof(entries));
    // What was packed is returned first: the next call meets the error again.
    if (length <= 0) return length == 0 || target.Count() > 0 ? target.Count() : -1;
    for (ssize_t at = 0; at < length;) {
      const auto* const entry = reinterpret_cast<const dirent64*>(entries + at);
      if (!IsFolderItself(entry->d_name) && !AddEntry(target, attributes, folder, entry->d_name)) {
        ::lseek(folder, position, SEEK_SET);
        errno = ERANGE;
        return target.Count() > 0 ? target.Count() : -1;
      }
      position = entry->d_off;
      at += entry->d_reclen;
    }
  }
}
