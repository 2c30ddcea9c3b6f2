#include "machine/apple/Sysctl.h"

#include <sys/sysctl.h>
#include <sys/types.h>

#include <cstring>

#include "platform/MachineObserver.h"

namespace Norvik::Machine::Mac {

namespace {

std::string SysctlBytes(const char* name) {
  std::size_t size = 0;
  if (::sysctlbyname(name, nullptr, &size, nullptr, 0) != 0) return {};
  std::string bytes(size, '\0');
  if (::sysctlbyname(name, bytes.data(), &size, nullptr, 0) != 0) return {};
  bytes.resize(size);
  return bytes;
}

std::uint64_t NumberOf(const std::string& bytes) {
  std::uint32_t word = 0;
  std::uint64_t longWord = 0;
  if (bytes.size() == sizeof(word)) {
    std::memcpy(&word, bytes.data(), sizeof(word));
    return word;
  }
  if (bytes.size() == sizeof(longWord)) std::memcpy(&longWord, bytes.data(), sizeof(longWord));
  return longWord;
}

}  // namespace

std::string SysctlText(const char* name) {
  const std::string bytes = SysctlBytes(name);
  std::string text = bytes.substr(0, bytes.find('\0'));
  if (!bytes.empty()) Platform::Observe(Platform::Asked::KERNEL_TEXT, name, text);
  return text;
}

std::uint64_t SysctlNumber(const char* name) {
  const std::string bytes = SysctlBytes(name);
  const auto number = NumberOf(bytes);
  if (!bytes.empty()) {
    Platform::Observe(Platform::Asked::KERNEL_NUMBER, name, std::to_string(number));
  }
  return number;
}

}  // namespace Norvik::Machine::Mac
