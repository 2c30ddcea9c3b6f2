#pragma once

#include <plist/plist.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace Norvik::Platform {

struct PropertyListFreer {
  void operator()(plist_t node) const { plist_free(node); }
};
/// A whole property list as the library holds it.
using PropertyList = std::unique_ptr<void, PropertyListFreer>;

/// Reads a property list, XML or binary. Null for what is none, and for one that is nested or
/// unfolds without measure.
PropertyList ReadPropertyList(std::string_view bytes);

/// Content of a regular file of up to 256 MiB; empty if it cannot be read.
std::string ReadFileBytes(const std::string& path);

/// Calls `take` for what a dictionary or an array holds, in order; not at all for other values.
void ForEachKey(plist_t dictionary, const std::function<void(const char*, plist_t)>& take);
void ForEachElement(plist_t array, const std::function<void(plist_t)>& take);

/// Text of a text value; empty for null and for other values.
std::string TextOf(plist_t value);

}  // namespace Norvik::Platform
