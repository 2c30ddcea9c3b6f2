#pragma once

#include <vector>

#include "host/health/Examined.h"
#include "host/health/Finding.h"

namespace Norvik::Host {

/// A check of something that makes an agent fail in silence. It changes nothing.
struct HealthCheck {
  const char* name;    ///< "data-folder"
  const char* title;   ///< what is well if the check is ok: a sentence without its full stop
  const char* remedy;  ///< what to do otherwise, likewise
  /// The keys of the document that may be empty otherwise, separated by ", "; "*" is all of them.
  const char* keys;
  /// Runs on a thread of its own. May throw a subclass of `std::exception`: the outcome is unknown
  /// then.
  Finding (*find)(const Examined& examined);
};

/// All checks, in the order in which they are reported: first what others depend on.
const std::vector<HealthCheck>& HealthChecks();

}  // namespace Norvik::Host
