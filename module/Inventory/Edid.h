#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Norvik::KOB {

// Decoders of a display's EDID block as hexadecimal text: two lower-case digits per byte, without
// separators. They never read past the end of a text; what is missing counts as empty.

/// Value of the leading hexadecimal digits, limited to the range of the result; 0 without a digit.
std::int32_t hex2num(const std::string& text);

/// A display descriptor.
struct Descriptor {
  enum Kind : std::int32_t { SERIAL = 1, NAME = 2, OTHER = 3 };

  std::int32_t kind = OTHER;
  std::string text;  ///< as the display stores it, with line end, spaces and NULs
};

/// Decodes a descriptor of 36 digits. Throws `std::out_of_range` for fewer than six.
Descriptor getDescriptor(const std::string& text);

/// The three letters that are packed into four digits. An invalid code yields a character outside
/// "A" to "Z".
std::string getIDManufacturer(const std::string& text);
/// The four digits with the two bytes swapped. A missing digit becomes a NUL.
std::string getProductCode(const std::string& text);
/// Version and revision from four digits, as "1.4".
std::string getEDIDVersion(const std::string& text);
/// The text of the first descriptor of kind `NAME`; "" without one.
std::string getName(const std::vector<Descriptor>& descriptors);
/// The text of the first descriptor of kind `SERIAL`; without one, the number in the eight digits.
std::string getSerial(const std::vector<Descriptor>& descriptors, const std::string& text);
/// First second of the month of manufacture, in local time, from two digits of week and two of
/// year. Seconds since the epoch, cut to 32 bits.
std::int32_t getDate(const std::string& text);

}  // namespace Norvik::KOB
