#pragma once

#include <vector>

#include "conformance/Subject.h"

namespace Norvik::Conformance {

/// A promise that a host makes to the module. docs/embedding.md has the same table.
struct Promise {
  const char* id;
  const char* sentence;
  /// Gets a started host. Returns if the promise is kept. Throws `Broken` or `NotOffered`; anything
  /// else that it throws comes from the host, which then does not keep it either.
  void (*check)(Subject&);
};

std::vector<Promise> ProcessPromises();
std::vector<Promise> ActionPromises();
std::vector<Promise> SchedulePromises();
std::vector<Promise> LifetimePromises();
std::vector<Promise> ServicePromises();

/// All of them, in the order of the report.
const std::vector<Promise>& AllPromises();

}  // namespace Norvik::Conformance
