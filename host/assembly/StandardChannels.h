#pragma once

#include <ostream>
#include <sstream>

#include "platform/FileDescriptor.h"

namespace Norvik::Host {

/// Opens a replacement for each standard channel that is closed at the start of the program;
/// otherwise a file of the agent would get its number. Reading there finds the end of the file, and
/// writing fails.
void FillStandardChannels();

/// A stream to the error channel that the program was started with, even while `ToolErrors`
/// redirects that of the tools. Writes when it is flushed.
class OwnErrors : private std::stringbuf, public std::ostream {
 public:
  OwnErrors();

 private:
  int sync() override;

  const Platform::FileDescriptor channel_;
};

/// Redirects the error channel of this process for a scope, and logs what tools printed there at
/// level 5 when the scope ends. At most one at a time.
class ToolErrors {
 public:
  ToolErrors();
  ToolErrors(const ToolErrors&) = delete;
  ToolErrors& operator=(const ToolErrors&) = delete;
  ~ToolErrors();

 private:
  Platform::FileDescriptor former_;  ///< not open: the channel is not redirected
  Platform::FileDescriptor kept_;
};

}  // namespace Norvik::Host
