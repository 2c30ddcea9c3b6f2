#pragma once

#include <string>

#include "platform/ScopedHandle.h"

namespace Norvik::Platform {

/// The text as an object; none for bytes that are no UTF-8.
CfRef<CFStringRef> CfTextOf(const char* utf8);

/// The text of an object in UTF-8, up to its first NUL; empty for one that UTF-8 cannot say.
std::string Utf8Of(CFStringRef text);

}  // namespace Norvik::Platform
