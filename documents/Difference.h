#pragma once

#include <string>

#include "documents/DocumentText.h"

namespace Norvik::Documents {

/// The incremental document between two full ones, both of the machine inventory or both of the
/// file inventory, in the form in which the module sends it: null if nothing differs, and "device"
/// is the new one's. Raises `DocumentError` if one is no full document or of the other kind.
std::string DifferenceOf(const NamedText& oldDocument, const NamedText& newDocument);

}  // namespace Norvik::Documents
