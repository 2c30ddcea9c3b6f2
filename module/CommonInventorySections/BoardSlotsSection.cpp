#include "module/CommonInventorySections/BoardSlotsSection.h"

#include <boost/property_tree/ptree.hpp>
#include <cstddef>
#include <cstdint>
#include <string>

#include "common/commands/CommandRunner.h"
#include "common/log/Logger.h"
#include "common/text/Text.h"
#include "module/Inventory/ProfilerReport.h"

namespace Norvik::KOB {

namespace {

using boost::property_tree::ptree;
using Structures = std::list<const Common::SmBios::CStruct*>;

constexpr char CHIP_COMMAND[] = "system_profiler -xml SPiBridgeDataType";
constexpr char CHIP_TYPE[] = "SPiBridgeDataType";
constexpr char NO_CHIP[] = "T2 chip is not present on this system";

constexpr std::uint8_t SLOT_STRUCTURE = 9;
constexpr std::uint8_t CHIP_STRUCTURE = 43;
constexpr std::uint32_t NO_STRUCTURE = 0xFFFFFFFF;
constexpr unsigned char CHIP_SLOT = 193;
constexpr unsigned char IN_USE = 4;

/// Texts of consecutive codes.
struct CodeRange {
  unsigned char first;
  std::size_t count;
  const char* const* texts;
};

constexpr const char* SLOTS[] = {"Other",
                                 "Unknown",
                                 "ISA",
                                 "MCA",
                                 "EISA",
                                 "PCI",
                                 "PC Card (PCMCIA)",
                                 "VL-VESA",
                                 "Proprietary",
                                 "Processor Card Slot",
                                 "Proprietary Memory Card Slot",
                                 "I/O Riser Card Slot",
                                 "NuBus",
                                 "PCI - 66MHz Capable",
                                 "AGP",
                                 "AGP 2X",
                                 "AGP 4X",
                                 "PCI-X",
                                 "AGP 8X"};
constexpr const char* LATER_SLOTS[] = {"PC-98/C20",
                                       "PC-98/C24",
                                       "PC-98/E",
                                       "PC-98/Local Bus",
                                       "PC-98/Card",
                                       "PCI Express",
                                       "PCI Express x1",
                                       "PCI Express x2",
                                       "PCI Express x4",
                                       "PCI Express x8",
                                       "PCI Express x16",
                                       "PCI Express Gen 2",
                                       "PCI Express Gen 2 x1",
                                       "PCI Express Gen 2 x2",
                                       "PCI Express Gen 2 x4",
                                       "PCI Express Gen 2 x8",
                                       "PCI Express Gen 2 x16",
                                       "PCI Express Gen 3",
                                       "PCI Express Gen 3 x1",
                                       "PCI Express Gen 3 x2",
                                       "PCI Express Gen 3 x4",
                                       "PCI Express Gen 3 x8",
                                       "PCI Express Gen 3 x16"};
/// Codes outside the SMBIOS standard, used for security chips.
constexpr const char* CHIPS[] = {"TPM Security Module", "Apple T2 Security Chip"};
constexpr CodeRange TYPES[] = {{1, std::size(SLOTS), SLOTS},
                               {160, std::size(LATER_SLOTS), LATER_SLOTS},
                               {192, std::size(CHIPS), CHIPS}};

constexpr const char* USAGES[] = {"Other", "Unknown", "Available", "In use"};

/// The text of a code; empty outside the range.
wxString TextOf(unsigned char code, const CodeRange& range) {
  const std::size_t index = static_cast<std::size_t>(code) - range.first;
  return index < range.count ? wxString(range.texts[index]) : wxString();
}

int HandleOf(const Common::SmBios::CStruct& structure) {
  return static_cast<int>(structure.Field(2, 2));
}

/// If the last entry is a security chip, sets its handle from the SMBIOS table.
void SetHandleOfChip(const Common::SmBios& smBios, SmbSystemSlotInfo& last) {
  Structures chips;
  smBios.GetStructData(CHIP_STRUCTURE, chips);
  const wxString name = last.name.Upper();
  if (!name.Contains("TPM") && !name.Contains("T2")) return;
  last.slotId = chips.empty() ? static_cast<int>(NO_STRUCTURE) : HandleOf(*chips.front());
}

}  // namespace

void BoardSlotsSection::GetInfo(std::list<SmbSystemSlotInfo>& result) {
  NORVIK_SCOPE();
  const std::shared_ptr<Common::SmBios> smBios(smBios_);
  Structures slots;
  smBios->GetStructData(SLOT_STRUCTURE, slots);
  for (const auto* const slot : slots) {
    SmbSystemSlotInfo info;
    info.slotId = HandleOf(*slot);
    info.name = Common::WxStringFromStdString(slot->TextAt(4));
    info.type = Type(static_cast<unsigned char>(slot->Field(5, 1)));
    info.description = CurrentUsage(static_cast<unsigned char>(slot->Field(7, 1)));
    result.push_back(info);
  }
  if (GetTpmInfo(result) && !result.empty()) SetHandleOfChip(*smBios, result.back());
}

bool BoardSlotsSection::GetTpmInfo(std::list<SmbSystemSlotInfo>& result) {
  const std::string output = Common::CommandRunner::ExecCommand(CHIP_COMMAND);
  if (output.empty()) {
    NORVIK_WARNING(NO_CHIP);
    return false;
  }
  const ptree report = ReadProfilerReport(output);
  for (const auto& [typeName, type] : report.get_child("array")) {
    if (type.get("_dataType", "") != CHIP_TYPE) continue;
    const ptree& items = ChildOrEmpty(type, "_items");
    if (items.empty()) continue;
    const auto name = items.front().second.get_optional<std::string>("ibridge_model_name");
    if (!name) {
      NORVIK_WARNING(NO_CHIP);
      return false;
    }
    SmbSystemSlotInfo chip;
    chip.name = Common::WxStringFromStdString(*name);
    chip.type = Type(CHIP_SLOT);
    chip.description = CurrentUsage(IN_USE);
    result.push_back(chip);
    return true;
  }
  return false;
}

wxString BoardSlotsSection::Type(unsigned char code) const {
  for (const CodeRange& range : TYPES) {
    const wxString text = TextOf(code, range);
    if (!text.empty()) return text;
  }
  return {};
}

wxString BoardSlotsSection::CurrentUsage(unsigned char code) const {
  return TextOf(code, {1, std::size(USAGES), USAGES});
}

}  // namespace Norvik::KOB
