#pragma once

#include <IOKit/IOKitLib.h>

#include <cstddef>
#include <memory>

#include "platform/compat/Registry.h"

namespace Norvik::Platform {

/// An entry, and the registry that owns it.
struct HeldEntry {
  std::shared_ptr<const Registry> registry;
  const RegistryEntry* entry = nullptr;
};
struct HeldIterator {
  std::shared_ptr<const Registry> registry;
  Registry::Entries entries;
  std::size_t next = 0;
};

/// A new handle. The caller owns one reference.
io_object_t MakeIoHandle(HeldEntry entry);
io_object_t MakeIoHandle(HeldIterator iterator);

/// The entry of a handle. This and the next function end the program, with a message that names the
/// call, if the handle was released, does not exist or is of the other kind.
HeldEntry EntryOf(io_object_t handle, const char* call);
/// The next entry of an iterator; an empty one at the end.
HeldEntry AdvanceIterator(io_object_t handle, const char* call);

void ReleaseIoHandle(io_object_t handle);
std::size_t CountIoHandles();

}  // namespace Norvik::Platform
