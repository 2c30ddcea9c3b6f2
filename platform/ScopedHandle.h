#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <IOKit/IOKitLib.h>

#include <utility>

namespace Norvik::Platform {

/// Owns one reference to an object of the operating system. `Traits` says what the handle is and
/// how it is given back; a handle that is zero is none.
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
  /// For calls that read the handle through a reference; they leave it as it is.
  Handle& Ref() { return handle_; }
  /// For calls that store a handle of which the caller becomes the owner.
  Handle* Out() {
    Reset();
    return &handle_;
  }
  /// Hands the reference over to the caller.
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
