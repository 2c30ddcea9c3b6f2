#include "machine/SmbiosNames.h"

#include <cstddef>

namespace Norvik::Machine {

namespace {

template <std::size_t size>
std::string NameIn(const char* const (&names)[size], std::size_t code) {
  return code < size ? names[code] : "";
}

}  // namespace

std::string ChassisTypeName(std::uint8_t type) {
  static constexpr const char* NAMES[] = {"",
                                          "",
                                          "",
                                          "Desktop",
                                          "Low Profile Desktop",
                                          "Pizza Box",
                                          "Mini Tower",
                                          "Tower",
                                          "Portable",
                                          "Laptop",
                                          "Notebook",
                                          "Hand Held",
                                          "Docking Station",
                                          "All in One",
                                          "Sub Notebook",
                                          "Space-saving",
                                          "Lunch Box",
                                          "Main Server Chassis",
                                          "Expansion Chassis",
                                          "SubChassis",
                                          "Bus Expansion Chassis",
                                          "Peripheral Chassis",
                                          "RAID Chassis",
                                          "Rack Mount Chassis",
                                          "Sealed-case PC",
                                          "Multi-system Chassis",
                                          "Compact PCI",
                                          "Advanced TCA",
                                          "Blade",
                                          "Blade Enclosure",
                                          "Tablet",
                                          "Convertible",
                                          "Detachable",
                                          "IoT Gateway",
                                          "Embedded PC",
                                          "Mini PC",
                                          "Stick PC"};
  return NameIn(NAMES, type);
}

std::string ConnectorName(std::uint8_t type) {
  static constexpr const char* NAMES[] = {"",
                                          "Centronics",
                                          "Mini Centronics",
                                          "Proprietary",
                                          "DB-25 pin male",
                                          "DB-25 pin female",
                                          "DB-15 pin male",
                                          "DB-15 pin female",
                                          "DB-9 pin male",
                                          "DB-9 pin female",
                                          "RJ-11",
                                          "RJ-45",
                                          "50-pin MiniSCSI",
                                          "Mini-DIN",
                                          "Micro-DIN",
                                          "PS/2",
                                          "Infrared",
                                          "HP-HIL",
                                          "Access Bus (USB)",
                                          "SSA SCSI",
                                          "Circular DIN-8 male",
                                          "Circular DIN-8 female",
                                          "On Board IDE",
                                          "On Board Floppy",
                                          "9-pin Dual Inline",
                                          "25-pin Dual Inline",
                                          "50-pin Dual Inline",
                                          "68-pin Dual Inline",
                                          "On Board Sound Input from CD-ROM",
                                          "Mini-Centronics Type-14",
                                          "Mini-Centronics Type-26",
                                          "Mini-jack (headphones)",
                                          "BNC",
                                          "1394",
                                          "SAS/SATA Plug Receptacle",
                                          "USB Type-C Receptacle"};
  return NameIn(NAMES, type);
}

std::string PortTypeName(std::uint8_t type) {
  static constexpr const char* NAMES[] = {"",
                                          "Parallel Port XT/AT Compatible",
                                          "Parallel Port PS/2",
                                          "Parallel Port ECP",
                                          "Parallel Port EPP",
                                          "Parallel Port ECP/EPP",
                                          "Serial Port XT/AT Compatible",
                                          "Serial Port 16450 Compatible",
                                          "Serial Port 16550 Compatible",
                                          "Serial Port 16550A Compatible",
                                          "SCSI Port",
                                          "MIDI Port",
                                          "Joystick Port",
                                          "Keyboard Port",
                                          "Mouse Port",
                                          "SSA SCSI",
                                          "USB",
                                          "FireWire (IEEE P1394)",
                                          "PCMCIA Type I",
                                          "PCMCIA Type II",
                                          "PCMCIA Type III",
                                          "Card bus",
                                          "Access Bus Port",
                                          "SCSI II",
                                          "SCSI Wide",
                                          "PC-98",
                                          "PC-98-Hireso",
                                          "PC-H98",
                                          "Video Port",
                                          "Audio Port",
                                          "Modem Port",
                                          "Network Port",
                                          "SATA",
                                          "SAS",
                                          "Multi-Function Display Port",
                                          "Thunderbolt"};
  return NameIn(NAMES, type);
}

std::string MemoryFormFactorName(std::uint8_t form) {
  static constexpr const char* NAMES[] = {"",        "",       "",
                                          "SIMM",    "SIP",    "Chip",
                                          "DIP",     "ZIP",    "Proprietary Card",
                                          "DIMM",    "TSOP",   "Row of chips",
                                          "RIMM",    "SODIMM", "SRIMM",
                                          "FB-DIMM", "Die",    "CAMM"};
  return NameIn(NAMES, form);
}

std::string MemoryTypeName(std::uint8_t type) {
  static constexpr const char* NAMES[] = {"",
                                          "",
                                          "",
                                          "DRAM",
                                          "EDRAM",
                                          "VRAM",
                                          "SRAM",
                                          "RAM",
                                          "ROM",
                                          "FLASH",
                                          "EEPROM",
                                          "FEPROM",
                                          "EPROM",
                                          "CDRAM",
                                          "3DRAM",
                                          "SDRAM",
                                          "SGRAM",
                                          "RDRAM",
                                          "DDR",
                                          "DDR2",
                                          "DDR2 FB-DIMM",
                                          "",
                                          "",
                                          "",
                                          "DDR3",
                                          "FBD2",
                                          "DDR4",
                                          "LPDDR",
                                          "LPDDR2",
                                          "LPDDR3",
                                          "LPDDR4",
                                          "Logical non-volatile device",
                                          "HBM",
                                          "HBM2",
                                          "DDR5",
                                          "LPDDR5",
                                          "HBM3"};
  return NameIn(NAMES, type);
}

}  // namespace Norvik::Machine
