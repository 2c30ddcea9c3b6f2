#pragma once

#include <string>

namespace Norvik::Machine {

/// A property of the first service of a class in the I/O registry: a text in UTF-8, or the bytes of
/// a data object. Empty if there is no such service or property, or it is of another kind.
std::string RegistryProperty(const char* serviceClass, const char* property);

}  // namespace Norvik::Machine
