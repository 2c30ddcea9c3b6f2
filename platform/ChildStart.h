#pragma once

#include "platform/ChildProcess.h"

namespace Norvik::Platform {

/// Where the channels of a child lead: descriptors of this process, all above 2.
struct ChildChannels {
  int output = -1;
  int errors = -1;
};

/// Both start the program and fill `processId`; they give 0 or the number of the error, and know
/// whether the program itself could be started.
int StartChild(const std::vector<std::string>& words, const ChildChannels& channels,
               pid_t& processId);
int StartChildAs(const ChildAccount& account, const std::vector<std::string>& words,
                 const ChildChannels& channels, pid_t& processId);

}  // namespace Norvik::Platform
