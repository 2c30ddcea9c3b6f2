#pragma once

#include <string>

namespace Norvik::Host {

/// Shows a text with the notification tool of the system, where it has one, and waits for that.
void ShowNotice(const std::string& text);

}  // namespace Norvik::Host
