#pragma once

#include <string>

namespace Norvik::Host {

/// Whether a text of the log only says that this system is no Mac. Such texts are no errors here.
/// False for all texts on a Mac, and while a recorded one takes the place of this machine.
bool IsForeignComplaint(const std::string& text);

}  // namespace Norvik::Host
