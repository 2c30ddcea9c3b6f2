#pragma once

#include <string>

namespace Norvik::KOB {

/// The printer queues of CUPS. Runs the tools of the print service.
class UnixPrinters {
 public:
  /// Removes the queue. False if it is still there or if no queue has that name; both are logged.
  bool RemovePrinter(std::string& name);

  /// Whether a list holds the name. Each line of the list is the name of a queue and a ":".
  bool CheckPrinter(const std::string& list, const std::string& name);
};

}  // namespace Norvik::KOB
