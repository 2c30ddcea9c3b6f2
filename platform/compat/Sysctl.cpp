#include <sys/sysctl.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

#include "platform/RecordedMachine.h"
#include "platform/compat/RealSystem.h"
#include "platform/compat/RecordedJson.h"

using namespace Norvik::Platform;

namespace {

template <class Number>
std::string BytesOf(Number number) {
  return std::string(reinterpret_cast<const char*>(&number), sizeof(number));
}

/// A value as the kernel stores it: a text with its NUL, a number in four bytes or, if it needs
/// them, in eight. Empty if the recording has no such value.
std::string RecordedValue(const char* name) {
  const nlohmann::json values = RecordedJson("sysctl.json");
  const auto& value = MemberOf(values, name);
  if (value.is_string()) return value.get<std::string>() + '\0';
  if (!value.is_number_unsigned()) return {};
  const auto number = value.get<std::uint64_t>();
  if (number > std::numeric_limits<std::uint32_t>::max()) return BytesOf(number);
  return BytesOf(static_cast<std::uint32_t>(number));
}

/// Stores a value as the calls do; without a buffer it gives the length.
int Store(const std::string& value, void* buffer, std::size_t* length) {
  const std::size_t offered = buffer ? *length : value.size();
  *length = std::min(offered, value.size());
  if (buffer) std::memcpy(buffer, value.data(), *length);
  if (!value.empty() && offered >= value.size()) return 0;
  errno = value.empty() ? ENOENT : ENOMEM;
  return -1;
}

}  // namespace

int sysctl(int* name, unsigned int nameLength, void* oldValue, size_t* oldLength, void*, size_t) {
  const bool known = nameLength == 2 && name[0] == CTL_HW && name[1] == HW_MEMSIZE;
  if (!known) return Store({}, oldValue, oldLength);
  if (IsMachineRecorded()) {
    const std::uint64_t size = WholeNumberAt(RecordedJson("sysctl.json"), "hw.memsize");
    return Store(size > 0 ? BytesOf(size) : std::string(), oldValue, oldLength);
  }
  return Store(BytesOf(RealMemorySize()), oldValue, oldLength);
}

int sysctlbyname(const char* name, void* oldValue, size_t* oldLength, void*, size_t) {
  if (!IsMachineRecorded()) return RealSysctlByName(name, oldValue, oldLength);
  return Store(RecordedValue(name), oldValue, oldLength);
}
