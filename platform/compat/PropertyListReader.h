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

/// Whether a property list is binary, by its first bytes. Everything else is taken for XML.
bool IsBinaryPropertyList(std::string_view bytes);

/// Whether a property list, XML or binary, can be read by recursion and expanded in memory: at most
/// 512 levels, at most two million values, and nothing in it whose nesting readers could see
/// differently. Checks nothing else of its form.
bool IsBoundedPropertyList(std::string_view bytes);

/// Reads a property list, XML or binary. Null for bytes that are no property list or not bounded.
PropertyList ReadPropertyList(std::string_view bytes);

/// The content of a regular file of up to 256 MiB; empty if it cannot be read.
std::string ReadFileBytes(const std::string& path);

/// Calls `take` for each entry of a dictionary or an array, in order; not at all for other values.
void ForEachKey(plist_t dictionary, const std::function<void(const char*, plist_t)>& take);
void ForEachElement(plist_t array, const std::function<void(plist_t)>& take);

/// The text of a string value; empty for null and for other values.
std::string TextOf(plist_t value);

}  // namespace Norvik::Platform
