#include "host/redaction/SensitiveFirmware.h"

#include <algorithm>
#include <boost/algorithm/string/predicate.hpp>
#include <cstddef>
#include <cstdint>
#include <list>
#include <string_view>
#include <vector>

#include "common/identification/SmBios.h"
#include "host/redaction/EncodedBytes.h"
#include "host/redaction/SensitiveKind.h"

namespace Norvik::Host {

namespace {

using namespace std::string_view_literals;

/// The offsets of texts that identify one part among others of its model.
constexpr struct {
  std::uint8_t type;
  std::size_t offset;
} SMBIOS_TEXTS[] = {
    {1, 0x07}, {2, 0x07},  {2, 0x08},  {3, 0x07},  {3, 0x08},  {4, 0x20},
    {4, 0x21}, {17, 0x18}, {17, 0x19}, {22, 0x07}, {39, 0x08}, {39, 0x09},
};
constexpr std::uint8_t SMBIOS_SYSTEM = 1;
constexpr std::size_t SMBIOS_UUID = 0x08;
constexpr std::size_t UUID_SIZE = 16;

/// The table directly after its entry point, or at the address in it, if that is in the bytes.
std::vector<std::uint8_t> TableIn(const std::string& bytes) {
  const bool isLong = boost::starts_with(bytes, "_SM3_");
  if (bytes.size() < 0x20 || (!isLong && !boost::starts_with(bytes, "_SM_"))) return {};
  const auto length = static_cast<unsigned char>(bytes[isLong ? 6 : 5]);
  std::size_t address = 0;
  for (std::size_t byte = 4; byte-- > 0;) {
    address = address << 8 | static_cast<unsigned char>(bytes[(isLong ? 0x10 : 0x18) + byte]);
  }
  const bool isInside = address >= length && address < bytes.size();
  const std::size_t begin = isInside ? address : std::min<std::size_t>(length, bytes.size());
  return {bytes.begin() + static_cast<std::ptrdiff_t>(begin), bytes.end()};
}

}  // namespace

void AddValuesOfSmbios(const std::string& bytes, Replacements& replacements) {
  const Common::SmBios table(0, TableIn(bytes));
  for (const auto& [type, offset] : SMBIOS_TEXTS) {
    std::list<const Common::SmBios::CStruct*> structures;
    table.GetStructData(type, structures);
    for (const auto* structure : structures) {
      AddSensitive(SensitiveKind::SERIAL, structure->TextAt(offset), replacements);
    }
  }
  std::list<const Common::SmBios::CStruct*> systems;
  table.GetStructData(SMBIOS_SYSTEM, systems);
  for (const auto* system : systems) {
    if (system->Length() < SMBIOS_UUID + UUID_SIZE) continue;
    const auto* const uuid = system->Header() + SMBIOS_UUID;
    replacements.AddHex(ToHex({uuid, uuid + UUID_SIZE}, ""));
  }
}

void AddValuesOfDisplay(const std::string& block, Replacements& replacements) {
  constexpr std::string_view SERIAL = "\0\0\0\xff\0"sv;
  constexpr std::size_t TEXT_SIZE = 13;
  for (const std::size_t at : {54u, 72u, 90u, 108u}) {
    if (block.compare(at, SERIAL.size(), SERIAL) != 0) continue;
    const std::string text = block.substr(at + SERIAL.size(), TEXT_SIZE);
    AddSensitive(SensitiveKind::SERIAL, text.substr(0, text.find('\n')), replacements);
  }
}

}  // namespace Norvik::Host
