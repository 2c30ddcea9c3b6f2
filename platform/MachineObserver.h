#pragma once

#include <functional>
#include <string>

namespace Norvik::Platform {

/// A question to the machine that a recording has to answer in the same way.
enum class Asked {
  FILE,           ///< an absolute path, which is about to be opened; without an answer
  EXISTENCE,      ///< the same, of which only the existence is wanted
  KERNEL_TEXT,    ///< the name of a kernel's value, and its text
  KERNEL_NUMBER,  ///< the same, and its decimal digits
  DEVICE,         ///< a mount point, and its device
  MODIFICATION,   ///< a path, and when its content was changed, in seconds since the epoch
};

/// Learns of each question, on the thread that asks it. A value that the machine does not have is
/// not reported.
using MachineObserver =
    std::function<void(Asked asked, const std::string& name, const std::string& answer)>;

/// Sets the observer; an empty one ends the observation. Call it while no other thread asks.
void SetMachineObserver(MachineObserver observer);

/// Passes a question on to the observer, if there is one.
void Observe(Asked asked, const std::string& name, const std::string& answer = {});

}  // namespace Norvik::Platform
