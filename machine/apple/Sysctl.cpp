#include "machine/apple/Sysctl.h"

#include <sys/sysctl.h>
#include <sys/types.h>

#include <cstring>

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

}  // namespace

std::string SysctlText(const char* name) {
  const std::string bytes = SysctlBytes(name);
  return bytes.substr(0, bytes.find('\0'));
}

std::uint64_t SysctlNumber(const char* name) {
  const std::string bytes = SysctlBytes(name);
  std::uint32_t word = 0;
  std::uint64_t longWord = 0;
  if (bytes.size() == sizeof(word)) {
    std::memcpy(&word, bytes.data(), sizeof(word));
    return word;
  }
  if (bytes.size() == sizeof(longWord)) std::memcpy(&longWord, bytes.data(), sizeof(longWord));
  return longWord;
}

}  // namespace Norvik::Machine::Mac
