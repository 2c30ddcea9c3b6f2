#pragma once

#include <cstddef>
#include <string>

namespace Norvik::Host {

/// Kinds of actions. Each has threads of its own, so none can keep another from running.
enum class Lane {
  Own,          ///< the agent's own work, such as fetching tasks
  Inventories,  ///< of the machine and of the files, whoever requests them
  Tasks,        ///< the server's
  Users,        ///< messages from and to users
  Sessions,     ///< questions to the server about users who join
  Commands,     ///< actions that an administrator gives a running agent
};
inline constexpr std::size_t LANES = 6;

/// The code of an action by its name; 0 for an unknown name.
unsigned int ActionCodeOf(const std::string& name);
/// The lane of an action that neither the server nor a user sends.
Lane LaneOf(unsigned int code);
/// For the log: "tasks of the server".
const char* NameOf(Lane lane);

}  // namespace Norvik::Host
