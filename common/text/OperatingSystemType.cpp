#include "common/text/OperatingSystemType.h"

#include "common/text/Text.h"

namespace Norvik::Common {

namespace {

struct TypeName {
  OperatingSystemType::Types type;
  const char* name;
};

constexpr TypeName TYPE_NAMES[] = {{OperatingSystemType::MACOS, "macOS"},
                                   {OperatingSystemType::WINDOWS, "Windows"},
                                   {OperatingSystemType::LINUX, "Linux"}};

}  // namespace

std::string OperatingSystemType::ToString(Types type) {
  for (const auto& entry : TYPE_NAMES) {
    if (entry.type == type) return entry.name;
  }
  return "Unknown";
}

OperatingSystemType::Types OperatingSystemType::FromString(const std::string& text) {
  for (const auto& entry : TYPE_NAMES) {
    if (ToUpper(entry.name) == ToUpper(text)) return entry.type;
  }
  return UNKNOWN;
}

}  // namespace Norvik::Common
