#include "platform/BulkDirectory.h"

#include <sys/attr.h>
#include <sys/vnode.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <utility>

#include "platform/DirectoryReader.h"

namespace Norvik::Platform {

namespace {

/// Holds any single entry many times over.
constexpr std::size_t MOST_BYTES = 65536;

attrlist WantedAttributes() {
  attrlist wanted = {};
  wanted.bitmapcount = ATTR_BIT_MAP_COUNT;
  wanted.commonattr = ATTR_CMN_RETURNED_ATTRS | ATTR_CMN_ERROR | ATTR_CMN_NAME | ATTR_CMN_OBJTYPE |
                      ATTR_CMN_MODTIME;
  // The data fork, as `st_size` has it: of a compressed file the size that a reader sees.
  wanted.fileattr = ATTR_FILE_DATALENGTH;
  return wanted;
}

EntryKind KindOfType(fsobj_type_t type) {
  switch (type) {
    case VNON:
      return EntryKind::Unknown;
    case VREG:
      return EntryKind::File;
    case VDIR:
      return EntryKind::Folder;
    case VLNK:
      return EntryKind::Link;
    default:
      return EntryKind::Other;
  }
}

/// The fields of one entry, in order. Those of 8 bytes too are aligned to 4.
class PackedFields {
 public:
  PackedFields(const char* begin, std::size_t length) : next_(begin), left_(length) {}

  /// Zero if the entry ends before the field does.
  template <class Value>
  Value Take() {
    Value value = {};
    isWhole_ = isWhole_ && left_ >= sizeof(value);
    if (!isWhole_) return value;
    std::memcpy(&value, next_, sizeof(value));
    next_ += sizeof(value);
    left_ -= sizeof(value);
    return value;
  }
  /// Null if it is not within the entry, with its end.
  const char* TakeText() {
    const char* const reference = next_;
    const std::size_t room = left_;
    const auto text = Take<attrreference_t>();
    const auto offset = static_cast<std::size_t>(std::max(text.attr_dataoffset, 0));
    const std::size_t length = text.attr_length;
    isWhole_ = isWhole_ && text.attr_dataoffset > 0 && length > 1 && offset <= room &&
               length <= room - offset && reference[offset + length - 1] == '\0';
    return isWhole_ ? reference + offset : nullptr;
  }
  bool IsWhole() const { return isWhole_; }

 private:
  const char* next_;
  std::size_t left_;
  bool isWhole_ = true;
};

/// Unpacks an entry from the field after its length. False if that is no entry.
bool UnpackFields(PackedFields fields, DirectoryEntry& entry) {
  const auto has = fields.Take<attribute_set_t>();
  const auto hasCommon = [&](attrgroup_t attribute) { return (has.commonattr & attribute) != 0; };
  // Only an entry with an error has this field.
  const auto error = hasCommon(ATTR_CMN_ERROR) ? fields.Take<std::uint32_t>() : 0;
  entry.name = hasCommon(ATTR_CMN_NAME) ? fields.TakeText() : nullptr;
  entry.kind =
      hasCommon(ATTR_CMN_OBJTYPE) ? KindOfType(fields.Take<fsobj_type_t>()) : EntryKind::Unknown;
  EntryMetadata metadata;
  metadata.kind = entry.kind;
  if (hasCommon(ATTR_CMN_MODTIME)) metadata.lastModification = fields.Take<timespec>().tv_sec;
  const bool hasSize = (has.fileattr & ATTR_FILE_DATALENGTH) != 0;
  const auto size = hasSize ? fields.Take<std::int64_t>() : 0;
  const bool isFile = entry.kind == EntryKind::File;
  if (isFile) metadata.size = size;
  entry.metadata.reset();
  if (error == 0 && entry.kind != EntryKind::Unknown && hasCommon(ATTR_CMN_MODTIME) &&
      (hasSize || !isFile)) {
    entry.metadata = metadata;
  }
  return fields.IsWhole() && entry.name != nullptr;
}

}  // namespace

BulkDirectory::BulkDirectory(BulkCall call, std::size_t size)
    : call_(std::move(call)), size_(size), buffer_(new char[size]) {}

void BulkDirectory::Begin() {
  left_ = 0;
  hasBegun_ = false;
  hasEnded_ = false;
}

BulkDirectory::Outcome BulkDirectory::Next(int folder, DirectoryEntry& entry,
                                           std::error_code& error) {
  error.clear();
  if (hasEnded_) return Outcome::End;
  if (left_ == 0) {
    const int got = Fill(folder);
    if (got < 0) return Fail(errno, error);
    hasEnded_ = got == 0;
    if (hasEnded_) return Outcome::End;
  }
  if (!Unpack(entry)) return Fail(EBADMSG, error);
  hasBegun_ = true;
  return Outcome::Entry;
}

int BulkDirectory::Fill(int folder) {
  for (;;) {
    attrlist wanted = WantedAttributes();
    ++calls_;
    const int got = call_(folder, &wanted, buffer_.get(), size_, 0);
    if (got >= 0) {
      position_ = 0;
      left_ = got;
      return got;
    }
    if (errno == ERANGE && size_ < MOST_BYTES) {
      size_ = std::clamp<std::size_t>(size_ * 2, 64, MOST_BYTES);
      buffer_.reset(new char[size_]);
    } else if (errno != EINTR) {
      return got;
    }
  }
}

bool BulkDirectory::Unpack(DirectoryEntry& entry) {
  std::uint32_t length = 0;
  const std::size_t room = size_ - position_;
  if (room < sizeof(length)) return false;
  std::memcpy(&length, buffer_.get() + position_, sizeof(length));
  if (length < sizeof(length) || length > room) return false;
  const char* const fields = buffer_.get() + position_ + sizeof(length);
  position_ += length;
  --left_;
  return UnpackFields(PackedFields(fields, length - sizeof(length)), entry);
}

BulkDirectory::Outcome BulkDirectory::Fail(int number, std::error_code& error) {
  if (!hasBegun_) return Outcome::Refused;
  hasEnded_ = true;
  // A folder that was removed meanwhile has ended.
  if (number == ENOENT) return Outcome::End;
  error.assign(number, std::generic_category());
  return Outcome::Failed;
}

}  // namespace Norvik::Platform
