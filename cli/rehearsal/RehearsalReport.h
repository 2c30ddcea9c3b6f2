#pragma once

#include <string>

#include "cli/commands/ActionOutcome.h"
#include "cli/rehearsal/RehearsalHost.h"

namespace Norvik::Cli {

/// Renders what an action would do.
class RehearsalReport {
 public:
  RehearsalReport(unsigned int code, const RehearsedAction& action);

  const ActionOutcome& Outcome() const { return outcome_; }
  /// One step, message, action or change per line. More than three queries of one program in a row
  /// share a line.
  std::string ToText() const;
  /// The JSON of `ToJson` for the outcome, with the further key "rehearsal".
  OrderedJson ToJson() const;

 private:
  unsigned int code_;
  RehearsedAction action_;
  ActionOutcome outcome_;
};

}  // namespace Norvik::Cli
