#pragma once

#include <string>

namespace Norvik::Machine::Mac {

/// A property of the first service of a class in the I/O registry: a text in UTF-8, or the bytes of
/// a data object. Empty if the service or property does not exist or has another type.
std::string RegistryProperty(const char* serviceClass, const char* property);

}  // namespace Norvik::Machine::Mac
