#pragma once

namespace Norvik::Common {

/// On which operating-system types the completion survey is offered.
struct SurveyInfo {
  bool onWindows = false;  ///< type 1
  bool onLinux = false;    ///< type 2
  bool onMacOs = false;    ///< type 0
};

}  // namespace Norvik::Common
