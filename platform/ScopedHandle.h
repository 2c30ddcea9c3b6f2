#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <IOKit/IOKitLib.h>

#include <utility>

namespace Norvik::Platform {

/// Owns one reference to an object of the operating system. `Traits` defines the type of the handle
/// and how it is released. A handle of zero is empty.
template <class Traits>
class ScopedHandle {
 public:
  using Handle = typename Traits::Handle;

  ScopedHandle() = default;
  explicit ScopedHandle(Handle handle) : handle_(handle) {}
  ScopedHandle(ScopedHandle&& other) noexcept : handle_(std::exchange(other.handle_, Handle{})) {}
  ScopedHandle& operator=(ScopedHandle&& other) noexcept {
    if (this != &other) Reset(std::exchange(other.handle_, Handle{}));
    return *this;
  }
  ScopedHandle(const ScopedHandle&) = delete;
  ScopedHandle& operator=(const ScopedHandle&) = delete;
  ~ScopedHandle() { Reset(); }

  explicit operator bool() const { return handle_ != Handle{}; }
  Handle Get() const { return handle_; }
  /// For calls that take the handle by reference but do not change it.
  Handle& Ref() { return handle_; }
  /// For calls that store a new handle, which this object then owns. Releases the present one.
  Handle* Out() {
    Reset();
    return &handle_;
  }
  /// Gives the reference to the caller, who has to release it.
  Handle Release() { return std::exchange(handle_, Handle{}); }
  void Reset(Handle handle = Handle{}) {
    const Handle previous = std::exchange(handle_, handle);
    if (previous != Handle{}) Traits::GiveBack(previous);
  }

 private:
  Handle handle_{};
};

struct IoObjectTraits {
  using Handle = io_object_t;
  static void GiveBack(io_object_t object) { IOObjectRelease(object); }
};

template <class Reference>
struct CfTraits {
  using Handle = Reference;
  static void GiveBack(Reference object) { CFRelease(object); }
};

/// An entry, a service or an iterator of the I/O registry.
using IoObject = ScopedHandle<IoObjectTraits>;
/// A Core Foundation object: `CfRef<CFStringRef>`.
template <class Reference>
using CfRef = ScopedHandle<CfTraits<Reference>>;

}  // namespace Norvik::Platform
