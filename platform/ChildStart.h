#pragma once

#include "platform/ChildProcess.h"

namespace Norvik::Platform {

/// What becomes standard output and standard error of a child: descriptors of this process, both
/// above 2.
struct ChildChannels {
  int output = -1;
  int errors = -1;
};

/// Both start the program in a process group of its own and set `processId`. They return 0, or the
/// errno with which the child or the program itself could not be started.
int StartChild(const std::vector<std::string>& words, const ChildChannels& channels,
               pid_t& processId);
int StartChildAs(const ChildAccount& account, const std::vector<std::string>& words,
                 const ChildChannels& channels, pid_t& processId);

}  // namespace Norvik::Platform
