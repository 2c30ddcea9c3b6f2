#pragma once

#include <string>

#include "documents/MachineDocument.h"

namespace Norvik::Documents {

/// The incremental document between two full ones, as the module would send it: null if nothing
/// differs, and "device" is the new one's. Raises `DocumentError` if one is no full document.
std::string DifferenceOf(const NamedText& oldDocument, const NamedText& newDocument);

}  // namespace Norvik::Documents
