#include "platform/compat/IoHandles.h"

#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

#include "platform/compat/CfObjects.h"
#include "platform/compat/LiveObjects.h"

namespace Norvik::Platform {

namespace {

using Held = std::variant<HeldEntry, HeldIterator>;

std::string Describe(const Held& held) {
  if (const auto* entry = std::get_if<HeldEntry>(&held)) {
    return "the entry \"" + entry->entry->name + "\" of class " + entry->entry->className;
  }
  return "an iterator of " + std::to_string(std::get<HeldIterator>(held).entries.size()) +
         " entries";
}

/// All handles. No number is used twice, so that a released handle is never mistaken for a new one.
class HandleTable {
 public:
  io_object_t Add(Held held) {
    const std::lock_guard lock(mutex_);
    held_.emplace(next_, std::move(held));
    return next_++;
  }

  template <class Kind, class Use>
  HeldEntry With(io_object_t handle, const char* call, Use use) {
    const std::lock_guard lock(mutex_);
    Held& held = Live(handle, call);
    if (auto* wanted = std::get_if<Kind>(&held)) return use(*wanted);
    StopProgram(std::string(call) + ": does not take " + Describe(held));
  }

  void Release(io_object_t handle) {
    const std::lock_guard lock(mutex_);
    const std::string description = Describe(Live(handle, "IOObjectRelease"));
    held_.erase(handle);
    released_[handle % released_.size()] = {handle, description};
  }

  std::size_t Count() {
    const std::lock_guard lock(mutex_);
    return held_.size();
  }

 private:
  Held& Live(io_object_t handle, const char* call) {
    const auto found = held_.find(handle);
    if (found != held_.end()) return found->second;
    const auto& [released, description] = released_[handle % released_.size()];
    StopProgram(std::string(call) + ": " +
                (released == handle ? description + " was released already"
                                    : "the handle does not exist or was released long ago"));
  }

  std::mutex mutex_;
  std::unordered_map<io_object_t, Held> held_;
  std::vector<std::pair<io_object_t, std::string>> released_{256};
  io_object_t next_ = 0x1003;
};

/// Never destroyed, since handles may be released at the very end of the program.
HandleTable& Handles() {
  static auto& table = *new HandleTable();
  return table;
}

}  // namespace

io_object_t MakeIoHandle(HeldEntry entry) { return Handles().Add(std::move(entry)); }

io_object_t MakeIoHandle(HeldIterator iterator) { return Handles().Add(std::move(iterator)); }

HeldEntry EntryOf(io_object_t handle, const char* call) {
  return Handles().With<HeldEntry>(handle, call, [](HeldEntry& entry) { return entry; });
}

HeldEntry AdvanceIterator(io_object_t handle, const char* call) {
  return Handles().With<HeldIterator>(handle, call, [](HeldIterator& iterator) {
    if (iterator.next >= iterator.entries.size()) return HeldEntry();
    return HeldEntry{iterator.registry, iterator.entries[iterator.next++]};
  });
}

void ReleaseIoHandle(io_object_t handle) { Handles().Release(handle); }

std::size_t CountIoHandles() { return Handles().Count(); }

LiveObjects CountLiveObjects() { return {CountCfObjects(), CountIoHandles()}; }

}  // namespace Norvik::Platform
