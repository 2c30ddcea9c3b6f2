#pragma once

#include <string>

namespace Norvik::KOB {

/// Printer queues of CUPS.
class UnixPrinters {
 public:
  /// Removes the queue. True when it is gone; false also if there was none of that name.
  bool RemovePrinter(std::string& name);

  /// Whether a list, with a queue and a ":" in each line, has the name.
  bool CheckPrinter(const std::string& list, const std::string& name);
};

}  // namespace Norvik::KOB
