#pragma once

#include <optional>
#include <string>

#include "platform/ChildProcess.h"

namespace Norvik::Platform {

/// The account of a user's name; empty if the system knows none.
std::optional<ChildAccount> AccountOf(const std::string& userName);

/// Name of the user of a session, which is told by the process number of its login record, cut to
/// 16 bits. Session 0 is the one at the console or, without one, the first. Empty if there is none.
std::string UserOfSession(short session);

}  // namespace Norvik::Platform
