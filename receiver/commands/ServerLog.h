#pragma once

namespace Norvik::Receiver {

/// Writes warnings, errors and information to standard error, each on a line with its time.
void LogToStandardError();

}  // namespace Norvik::Receiver
