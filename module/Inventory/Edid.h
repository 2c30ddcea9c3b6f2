#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Norvik::KOB {

// Decoders of a display's EDID block as hexadecimal text: two lower-case digits for each byte,
// without separators. They read no text past its end; what is missing there counts as empty.

/// Value of leading hexadecimal digits: 2147483647 for a greater one, 0 without a digit.
std::int32_t hex2num(const std::string& text);

/// A display descriptor.
struct Descriptor {
  enum Kind : std::int32_t { SERIAL = 1, NAME = 2, OTHER = 3 };

  std::int32_t kind = OTHER;
  std::string text;  ///< as the display stores it, line end, blanks and NULs included
};

/// Decodes a descriptor of 36 digits. Raises `std::out_of_range` for fewer than six.
Descriptor getDescriptor(const std::string& text);

/// Three letters, packed into four digits. A code that is none gives a character beside "A" to "Z".
std::string getIDManufacturer(const std::string& text);
/// The four digits, the last two first. A digit that is missing becomes a NUL.
std::string getProductCode(const std::string& text);
/// Version and revision out of four digits: "1.4".
std::string getEDIDVersion(const std::string& text);
/// The first text of kind `NAME`.
std::string getName(const std::vector<Descriptor>& descriptors);
/// The first text of kind `SERIAL`; the number in the eight digits, if there is none.
std::string getSerial(const std::vector<Descriptor>& descriptors, const std::string& text);
/// First second of the month of manufacture, in local time, out of week and year in two digits
/// each. Seconds since the epoch, cut to 32 bits.
std::int32_t getDate(const std::string& text);

}  // namespace Norvik::KOB
