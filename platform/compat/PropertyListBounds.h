#pragma once

#include <string_view>

namespace Norvik::Platform {

/// By its first bytes. Everything else is taken as XML.
bool IsBinaryPropertyList(std::string_view bytes);

/// Whether a property list, XML or binary, can be read by recursion and unfolded in memory: nested
/// no deeper than 512 levels, of no more than two million values, and with nothing in it whose
/// nesting readers could see differently. Tells nothing else about its form.
bool IsBoundedPropertyList(std::string_view bytes);

}  // namespace Norvik::Platform
