#pragma once

#include <map>
#include <string>

#include "host/recording/Questions.h"

namespace Norvik::Host {

/// What calls of the system answer on this machine, in the files of a recording, by their names:
/// the values of the kernel and the file systems that were asked for, and the whole of interfaces,
/// accounts, processes and what `Platform::MachineFacts` has.
std::map<std::string, std::string> SystemFacts(const Questions& questions);

}  // namespace Norvik::Host
