#include "platform/MachineFacts.h"

#include <filesystem>
#include <system_error>

#include "platform/compat/PropertyListReader.h"
#include "platform/compat/Recording.h"

namespace Norvik::Platform {

namespace {

constexpr const char* FACTS[] = {"ioregistry.plist", "location.json", "smbios.bin"};

}  // namespace

std::map<std::string, std::string> MachineFacts() {
  std::map<std::string, std::string> facts;
  for (const char* const name : FACTS) {
    const std::string file = RecordingFile(name);
    std::error_code unknown;
    if (!file.empty() && std::filesystem::is_regular_file(file, unknown)) {
      facts[name] = ReadFileBytes(file);
    }
  }
  return facts;
}

}  // namespace Norvik::Platform
