#pragma once

#include <stdexcept>
#include <string>

#include "receiver/database/Session.h"

namespace Norvik::Receiver {

/// An expression that cannot be read. The text says where and why.
class ExpressionError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A part of a statement that is true of the agents `a.agent` that an expression finds. Values of
/// the expression are parameters only.
struct Condition {
  std::string statement;
  Values values;
};

/// The condition of an expression, such as
///   software.name ~ "fire" and software.version < 120
/// docs/receiver.md describes them. Throws `ExpressionError`.
Condition ConditionOf(const std::string& expression);

}  // namespace Norvik::Receiver
