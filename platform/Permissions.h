#pragma once

namespace Norvik::Platform {

/// What a user or a profile lets a program do.
enum class Permission {
  UNKNOWN,    ///< the system does not tell, or knows no such permission
  NOT_ASKED,  ///< nobody has decided yet
  REFUSED,
  GRANTED,
};

// macOS judges a process by the program that is responsible for it: for a command of a terminal
// that is the terminal. None of these asks the user or waits for an answer.

/// To know where the machine is. Of the recorded machine if one is in force.
Permission LocationPermission();
/// To send Apple Events to the process that logs out, restarts and shuts down.
Permission AppleEventPermission();

}  // namespace Norvik::Platform
