#pragma once

#include <IOKit/IOKitLib.h>

#include <cstddef>
#include <memory>

#include "platform/compat/Registry.h"

namespace Norvik::Platform {

/// An entry, and the registry that keeps it.
struct HeldEntry {
  std::shared_ptr<const Registry> registry;
  const RegistryEntry* entry = nullptr;
};
struct HeldIterator {
  std::shared_ptr<const Registry> registry;
  Registry::Entries entries;
  std::size_t next = 0;
};

/// A new handle, of which the caller has one reference.
io_object_t MakeIoHandle(HeldEntry entry);
io_object_t MakeIoHandle(HeldIterator iterator);

/// What a handle stands for. Both end the program, naming the call, if the handle was given back
/// already, does not exist or is of the other kind.
HeldEntry EntryOf(io_object_t handle, const char* call);
/// The next entry; none at the end.
HeldEntry AdvanceIterator(io_object_t handle, const char* call);

void ReleaseIoHandle(io_object_t handle);
std::size_t CountIoHandles();

}  // namespace Norvik::Platform
