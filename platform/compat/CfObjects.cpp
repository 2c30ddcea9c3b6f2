#include "platform/compat/CfObjects.h"

#include <cstdio>
#include <cstdlib>
#include <deque>
#include <mutex>
#include <unordered_map>
#include <utility>

namespace Norvik::Platform {

namespace {

constexpr std::size_t REMEMBERED = 256;
constexpr std::size_t SHOWN_TEXT = 60;

struct Object {
  CfValue value;
  int references = 1;
};

using Id = std::uintptr_t;

const char* TypeName(const CfValue& value) {
  static constexpr const char* NAMES[] = {"CFString", "CFNumber", "CFBoolean",    "CFData",
                                          "CFDate",   "CFArray",  "CFDictionary", "CFURL"};
  return NAMES[value.index()];
}

std::string Describe(const CfValue& value) {
  std::string text = TypeName(value);
  if (const auto* string = std::get_if<std::string>(&value)) {
    text += " \"" + string->substr(0, SHOWN_TEXT) + "\"";
  } else if (const auto* number = std::get_if<CfNumber>(&value)) {
    text += " " + std::to_string(number->whole);
  } else if (const auto* dictionary = std::get_if<CfDictionary>(&value)) {
    text += " of " + std::to_string(dictionary->values.size()) + " keys";
    if (!dictionary->values.empty())
      text += ", first \"" + dictionary->values.begin()->first + "\"";
  }
  return text;
}

/// All objects. A reference is a number that is never used twice, not an address, so that a
/// released object is never mistaken for a new one.
class ObjectTable {
 public:
  Id Add(CfValue value) {
    const std::lock_guard lock(mutex_);
    const Id id = next_;
    next_ += 16;
    objects_.emplace(id, Object{std::move(value)});
    return id;
  }

  const CfValue& Find(Id id, const char* call) {
    const std::lock_guard lock(mutex_);
    return Live(id, call).value;
  }

  void Retain(Id id) {
    const std::lock_guard lock(mutex_);
    ++Live(id, "CFRetain").references;
  }

  /// Without recursion, since the object may be nested to any depth.
  void Release(Id id) {
    const std::lock_guard lock(mutex_);
    std::vector<Id> open{id};
    while (!open.empty()) {
      const Id current = open.back();
      open.pop_back();
      ReleaseOne(current, open);
    }
  }

  std::size_t Count() {
    const std::lock_guard lock(mutex_);
    return objects_.size();
  }

 private:
  Object& Live(Id id, const char* call) {
    const auto found = objects_.find(id);
    if (found != objects_.end()) return found->second;
    std::string text = std::string(call) + ": ";
    if (id == 0) StopProgram(text + "the object is null");
    for (const auto& [released, description] : released_) {
      if (released == id) StopProgram(text + description + " was released already");
    }
    StopProgram(text + "the object does not exist or was released long ago");
  }

  void ReleaseOne(Id id, std::vector<Id>& open) {
    Object& object = Live(id, "CFRelease");
    if (--object.references > 0) return;
    if (const auto* array = std::get_if<CfArray>(&object.value)) {
      for (const CFTypeRef value : array->values) open.push_back(reinterpret_cast<Id>(value));
    } else if (const auto* dictionary = std::get_if<CfDictionary>(&object.value)) {
      for (const auto& item : dictionary->values) open.push_back(reinterpret_cast<Id>(item.second));
    }
    released_.emplace_back(id, Describe(object.value));
    if (released_.size() > REMEMBERED) released_.pop_front();
    objects_.erase(id);
  }

  std::mutex mutex_;
  std::unordered_map<Id, Object> objects_;
  std::deque<std::pair<Id, std::string>> released_;
  Id next_ = 0x1000;
};

/// Never destroyed, since objects may be released at the very end of the program.
ObjectTable& Objects() {
  static auto& table = *new ObjectTable();
  return table;
}

CFTypeRef NumberFrom(plist_t node) {
  std::uint64_t value = 0;
  plist_get_uint_val(node, &value);
  return MakeCfObject(CfNumber{false, static_cast<std::int64_t>(value), 0.0});
}

CFTypeRef RealFrom(plist_t node) {
  double value = 0.0;
  plist_get_real_val(node, &value);
  return MakeCfObject(CfNumber{true, 0, value});
}

CFTypeRef BooleanFrom(plist_t node) {
  std::uint8_t value = 0;
  plist_get_bool_val(node, &value);
  return MakeCfObject(value != 0);
}

CFTypeRef DataFrom(plist_t node) {
  std::uint64_t length = 0;
  const char* const bytes = plist_get_data_ptr(node, &length);
  return MakeCfObject(bytes ? CfData(bytes, bytes + length) : CfData());
}

CFTypeRef DateFrom(plist_t node) {
  std::int32_t seconds = 0;
  std::int32_t microseconds = 0;
  plist_get_date_val(node, &seconds, &microseconds);
  return MakeCfObject(CfDate{seconds + microseconds / 1e6});
}

CFTypeRef ArrayFrom(plist_t node) {
  CfArray array;
  ForEachElement(node, [&](plist_t value) { array.values.push_back(CfFromPropertyList(value)); });
  return MakeCfObject(std::move(array));
}

CFTypeRef DictionaryFrom(plist_t node) {
  CfDictionary dictionary;
  ForEachKey(node, [&](const char* key, plist_t value) {
    // Of two equal keys the first one counts.
    if (dictionary.values.count(key) == 0) dictionary.values[key] = CfFromPropertyList(value);
  });
  return MakeCfObject(std::move(dictionary));
}

}  // namespace

CFTypeRef MakeCfObject(CfValue value) {
  return reinterpret_cast<CFTypeRef>(Objects().Add(std::move(value)));
}

CFTypeRef CfFromPropertyList(plist_t node) {
  switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN:
      return BooleanFrom(node);
    case PLIST_UINT:
      return NumberFrom(node);
    case PLIST_REAL:
      return RealFrom(node);
    case PLIST_DATA:
      return DataFrom(node);
    case PLIST_DATE:
      return DateFrom(node);
    case PLIST_ARRAY:
      return ArrayFrom(node);
    case PLIST_DICT:
      return DictionaryFrom(node);
    default:
      return MakeCfObject(TextOf(node));
  }
}

const CfValue& CfValueOf(CFTypeRef object, const char* call) {
  return Objects().Find(reinterpret_cast<Id>(object), call);
}

void FailCfType(const CfValue& value, const char* call) {
  StopProgram(std::string(call) + ": does not take " + Describe(value));
}

void RetainCfObject(CFTypeRef object) { Objects().Retain(reinterpret_cast<Id>(object)); }

void ReleaseCfObject(CFTypeRef object) { Objects().Release(reinterpret_cast<Id>(object)); }

std::size_t CountCfObjects() { return Objects().Count(); }

void StopProgram(const std::string& text) {
  std::fprintf(stderr, "%s\n", text.c_str());
  std::abort();
}

}  // namespace Norvik::Platform

const CFAllocatorRef kCFAllocatorDefault = nullptr;
