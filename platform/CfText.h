#pragma once

#include <string>

#include "platform/ScopedHandle.h"

namespace Norvik::Platform {

/// A new object with the text; empty if the bytes are not UTF-8.
CfRef<CFStringRef> CfTextOf(const char* utf8);

/// The text of an object in UTF-8, up to its first NUL; empty if UTF-8 cannot express it.
std::string Utf8Of(CFStringRef text);

}  // namespace Norvik::Platform
