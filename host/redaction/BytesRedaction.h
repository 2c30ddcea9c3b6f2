#pragma once

#include <map>
#include <string>

#include "host/redaction/Replacements.h"

namespace Norvik::Host {

/// Replaces known values in bytes of any format, also where they are encoded in Base64 or in
/// hexadecimal digits, and the serial numbers of displays, whose blocks keep a valid checksum.
class BytesRedaction {
 public:
  explicit BytesRedaction(const StandIns& standIns) : replacements(standIns) {}

  /// Displays come first: their numbers are replaced in a way of their own.
  void AddDisplays(const std::string& bytes, int depth = 0);
  /// The length stays.
  std::string Apply(const std::string& bytes, int depth = 0) const;

  Replacements replacements;

 private:
  void AddDisplay(const std::string& serial);

  std::map<std::string, std::string> displays_;  ///< bytes of serial numbers
};

}  // namespace Norvik::Host
