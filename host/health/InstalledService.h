#pragma once

#include <string>
#include <vector>

namespace Norvik::Host {

/// How this system's service manager knows a part of the agent.
struct InstalledService {
  std::vector<std::string> descriptions;  ///< files; one of them exists if it is installed
  /// Words of a program, with its path, that succeeds if the part is loaded. Changes nothing.
  std::vector<std::string> question;
  std::vector<int> notLoaded;  ///< exit codes that mean no; any other failure says nothing
};

InstalledService MachineService();
/// The process of each user. Without a question: it is answered only to that user.
InstalledService UserService();

}  // namespace Norvik::Host
