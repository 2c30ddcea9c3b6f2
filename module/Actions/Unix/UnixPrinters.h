#pragma once

#include <string>

namespace Norvik::KOB {

/// Printer queues of CUPS.
class UnixPrinters {
 public:
  /// Removes the queue. False if it is still there, and also if there was none of that name.
  bool RemovePrinter(std::string& name);

  /// Whether a list holds the name. Each line of it is a queue and a ":".
  bool CheckPrinter(const std::string& list, const std::string& name);
};

}  // namespace Norvik::KOB
