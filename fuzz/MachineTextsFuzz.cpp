#include "Fuzz.h"
#include "machine/DiskutilText.h"
#include "machine/MountText.h"
#include "machine/NetworkText.h"
#include "machine/ProcessorText.h"
#include "machine/SystemText.h"

/// Parses the input as the output of a tool or as a file that the facts of the machine come from.
/// Its first character chooses which. `diskutil` gets the part up to the first NUL as its
/// information, the rest as its list.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace Norvik::Machine;
  static const Norvik::Fuzz::Quiet quiet;
  using Parser = void (*)(const std::string&);
  static constexpr Parser PARSERS[] = {
      [](const std::string& text) {
        const std::size_t end = std::min(text.find('\0'), text.size());
        ParseDiskutil(text.substr(0, end), text.substr(end));
      },
      [](const std::string& text) { VolumesOf(ParseMountInfo(text)); },
      [](const std::string& text) { ParseRoutes(text); },
      [](const std::string& text) { ParseIpv6Routes(text); },
      [](const std::string& text) { ParseNetstatRoutes(text); },
      [](const std::string& text) { ParseIpv6Addresses(text); },
      [](const std::string& text) { ParseResolverFile(text); },
      [](const std::string& text) { ParseDhcpLeases(text); },
      [](const std::string& text) { ParseVlans(text); },
      [](const std::string& text) { ParseHardwarePorts(text); },
      [](const std::string& text) { ParseCpuInfo(text); },
      [](const std::string& text) { ParseArmFeatures(text); },
      [](const std::string& text) { ParseCacheSize(text); },
      [](const std::string& text) { ParseParagraphs(text, ':'); },
      [](const std::string& text) { WithoutKeywords(text); },
      [](const std::string& text) {
        if (PlainMacAddress(text).size() % 12 != 0) std::abort();
      },
  };
  if (size == 0) return 0;
  PARSERS[data[0] % std::size(PARSERS)](std::string(data + 1, data + size));
  return 0;
}
