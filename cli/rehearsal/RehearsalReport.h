#pragma once

#include <string>

#include "cli/commands/ActionOutcome.h"
#include "cli/rehearsal/RehearsalHost.h"

namespace Norvik::Cli {

/// Tells what an action would do.
class RehearsalReport {
 public:
  RehearsalReport(unsigned int code, const RehearsedAction& action);

  const ActionOutcome& Outcome() const { return outcome_; }
  /// One thing a line; many questions to one program, one behind the other, on one line together.
  std::string ToText() const;
  /// What `action` answers, and further keys.
  OrderedJson ToJson() const;

 private:
  unsigned int code_;
  RehearsedAction action_;
  ActionOutcome outcome_;
};

}  // namespace Norvik::Cli
