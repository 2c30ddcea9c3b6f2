#pragma once

#include <string>

#include "host/commands/ActionOutcome.h"
#include "host/rehearsal/RehearsalHost.h"

namespace Norvik::Host {

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

}  // namespace Norvik::Host
