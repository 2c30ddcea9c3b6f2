#pragma once

#include <optional>
#include <string>

#include "platform/ChildProcess.h"

namespace Norvik::Platform {

/// The account of a user's name. Empty if it is unknown, or if its entry is longer than 1 MiB.
std::optional<ChildAccount> AccountOf(const std::string& userName);

/// Name of the user of a session. A session's number is the process number in its login record, cut
/// to 16 bits; session 0 is the one at the console or, without one, the first. Empty if there is no
/// such session.
std::string UserOfSession(short session);

}  // namespace Norvik::Platform
