#pragma once

#include <string>

namespace Norvik::Host {

/// Shows a text with the notification tool of the system, if it has one, and waits for the tool. A
/// failure is logged.
void ShowNotice(const std::string& text);

}  // namespace Norvik::Host
