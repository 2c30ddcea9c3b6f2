#pragma once

#include <ostream>
#include <sstream>

#include "platform/FileDescriptor.h"

namespace Norvik::Host {

/// Fills the place of each standard channel that the program was started without, or a file of the
/// agent would take it: what is read there has an end, and what is written there fails.
void FillStandardChannels();

/// What the program itself says on the error channel it was started with, line by line, wherever
/// that of the tools leads meanwhile.
class OwnErrors : private std::stringbuf, public std::ostream {
 public:
  OwnErrors();

 private:
  int sync() override;

  const Platform::FileDescriptor channel_;
};

/// Has what tools of this process print on its error channel go to the log at level 5 instead, when
/// the scope ends. One at a time.
class ToolErrors {
 public:
  ToolErrors();
  ToolErrors(const ToolErrors&) = delete;
  ToolErrors& operator=(const ToolErrors&) = delete;
  ~ToolErrors();

 private:
  Platform::FileDescriptor former_;  ///< not open: nothing has been changed
  Platform::FileDescriptor kept_;
};

}  // namespace Norvik::Host
