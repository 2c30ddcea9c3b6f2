#include "platform/compat/PropertyListReader.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace Norvik::Platform {

namespace {

constexpr std::size_t MAX_DEPTH = 512;
constexpr std::size_t MAX_VALUES = 2'000'000;

/// Follows the nesting of an XML text. Refuses mark-up that a property list does not need, since
/// parsers could disagree about its end.
class XmlWalk {
 public:
  explicit XmlWalk(std::string_view text) : text_(text) {}

  bool IsBounded() {
    if (text_.find('\0') != NONE) return false;
    for (std::size_t at = text_.find('<'); at != NONE; at = text_.find('<', at)) {
      at = AfterMarkup(at);
      if (at == NONE) return false;
    }
    return true;
  }

 private:
  static constexpr std::size_t NONE = std::string_view::npos;

  std::size_t After(const char* end, std::size_t from) const {
    const std::size_t found = text_.find(end, from);
    return found == NONE ? NONE : found + std::string_view(end).size();
  }

  bool StandsAt(std::size_t at, std::string_view begin) const {
    return text_.substr(at, begin.size()) == begin;
  }

  /// The position after a mark-up; `NONE` if the mark-up is refused.
  std::size_t AfterMarkup(std::size_t at) {
    if (StandsAt(at, "<!--")) return After("-->", at + 4);
    if (StandsAt(at, "<![CDATA[")) return After("]]>", at + 9);
    if (StandsAt(at, "<?")) return After("?>", at + 2);
    const std::size_t end = text_.find('>', at);
    if (end == NONE) return NONE;
    const std::string_view inner = text_.substr(at + 1, end - at - 1);
    return IsGoodTag(inner) ? end + 1 : NONE;
  }

  bool IsGoodTag(std::string_view tag) {
    if (tag.empty() || tag.find('<') != NONE) return false;
    if (tag.front() == '!') return tag.find('[') == NONE;
    if (tag.front() == '/') return depth_ > 0 && depth_-- > 0;
    if (++values_ > MAX_VALUES) return false;
    if (tag.back() == '/') return true;
    // A quoted ">" would end the tag elsewhere; only the outermost element has an attribute.
    if (tag.find_first_of("\"'") != NONE && tag.substr(0, 6) != "plist ") return false;
    return ++depth_ <= MAX_DEPTH;
  }

  const std::string_view text_;
  std::size_t depth_ = 0;
  std::size_t values_ = 0;
};

/// Follows the references of a binary property list without building anything. A value counts once
/// for each reference to it, since each will become a copy.
class BinaryWalk {
 public:
  explicit BinaryWalk(std::string_view bytes) : bytes_(bytes) {}

  bool IsBounded() {
    if (!ReadTrailer()) return false;
    std::vector<Visit> open{{topObject_, 1}};
    while (!open.empty()) {
      const Visit visit = open.back();
      open.pop_back();
      if (!Expand(visit, open)) return false;
    }
    return true;
  }

 private:
  struct Visit {
    std::uint64_t object;
    std::size_t depth;
  };
  static constexpr std::size_t TRAILER = 32;
  static constexpr std::size_t BYTES_PER_VALUE = 32;

  /// A big-endian number; empty if it is outside the list or its size is not 1 to 8.
  std::optional<std::uint64_t> Number(std::uint64_t at, std::uint64_t size) const {
    if (size == 0 || size > 8 || at > bytes_.size() || size > bytes_.size() - at) return {};
    std::uint64_t number = 0;
    for (const char byte : bytes_.substr(at, size)) {
      number = number << 8 | static_cast<unsigned char>(byte);
    }
    return number;
  }

  bool ReadTrailer() {
    if (bytes_.size() < TRAILER + 8) return false;
    const std::size_t at = bytes_.size() - TRAILER;
    offsetSize_ = static_cast<unsigned char>(bytes_[at + 6]);
    referenceSize_ = static_cast<unsigned char>(bytes_[at + 7]);
    objects_ = *Number(at + 8, 8);
    topObject_ = *Number(at + 16, 8);
    offsets_ = *Number(at + 24, 8);
    // Also keeps the products below from overflowing.
    return objects_ <= bytes_.size() && offsets_ <= bytes_.size();
  }

  /// The length of a text or the size of a collection. A large one follows the marker as a number.
  bool ReadCount(std::uint64_t& at, std::uint64_t& count) const {
    const auto marker = static_cast<unsigned char>(bytes_[at++]);
    count = marker & 0x0f;
    if (count != 0x0f) return true;
    const auto sizeMarker = Number(at++, 1);
    if (!sizeMarker || *sizeMarker >> 4 != 1 || (*sizeMarker & 0x0f) > 3) return false;
    const std::uint64_t size = std::uint64_t{1} << (*sizeMarker & 0x0f);
    const auto large = Number(at, size);
    at += size;
    count = large.value_or(0);
    return large && count <= bytes_.size();
  }

  bool Spend(std::uint64_t values) {
    values_ += values;
    return values_ <= MAX_VALUES;
  }

  bool Expand(const Visit& visit, std::vector<Visit>& open) {
    if (visit.object >= objects_ || visit.depth > MAX_DEPTH) return false;
    const auto offset = Number(offsets_ + visit.object * offsetSize_, offsetSize_);
    if (!offset || *offset >= bytes_.size()) return false;
    std::uint64_t at = *offset;
    const int kind = static_cast<unsigned char>(bytes_[at]) >> 4;
    if (kind < 0x4) return Spend(1);  // numbers, dates and truth values
    std::uint64_t count = 0;
    if (!ReadCount(at, count)) return false;
    if (kind < 0xa) return IsGoodText(kind, at, count) && Spend(1 + count / BYTES_PER_VALUE);
    const std::uint64_t references = kind == 0xd ? 2 * count : count;
    return Spend(1 + references) && AddReferences(at, references, visit.depth + 1, open);
  }

  /// The library ends the program if a key has a NUL.
  bool IsGoodText(int kind, std::uint64_t at, std::uint64_t count) const {
    const std::size_t unit = kind == 0x6 ? 2 : 1;
    const std::string_view text = bytes_.substr(std::min<std::uint64_t>(at, bytes_.size()));
    if (kind == 0x4) return true;
    for (std::uint64_t i = 0; i < count && (i + 1) * unit <= text.size(); ++i) {
      if (text.substr(i * unit, unit).find_first_not_of('\0') == std::string_view::npos)
        return false;
    }
    return true;
  }

  bool AddReferences(std::uint64_t at, std::uint64_t count, std::size_t depth,
                     std::vector<Visit>& open) const {
    for (std::uint64_t index = 0; index < count; ++index) {
      const auto object = Number(at + index * referenceSize_, referenceSize_);
      if (!object) return false;
      open.push_back({*object, depth});
    }
    return true;
  }

  const std::string_view bytes_;
  std::uint64_t offsetSize_ = 0;
  std::uint64_t referenceSize_ = 0;
  std::uint64_t objects_ = 0;
  std::uint64_t topObject_ = 0;
  std::uint64_t offsets_ = 0;
  std::uint64_t values_ = 0;
};

}  // namespace

bool IsBinaryPropertyList(std::string_view bytes) { return bytes.substr(0, 8) == "bplist00"; }

bool IsBoundedPropertyList(std::string_view bytes) {
  return IsBinaryPropertyList(bytes) ? BinaryWalk(bytes).IsBounded() : XmlWalk(bytes).IsBounded();
}

}  // namespace Norvik::Platform
