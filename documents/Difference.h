#pragma once

#include <string>

#include "documents/DocumentText.h"

namespace Norvik::Documents {

/// The text of the incremental document between two full ones, both of the machine inventory or
/// both of the file inventory, as the module writes it: "null" if nothing differs, otherwise with
/// the "device" of the new one. Throws `DocumentError` if a text is not a full document or if the
/// two are of different kinds.
std::string DifferenceOf(const NamedText& oldDocument, const NamedText& newDocument);

}  // namespace Norvik::Documents
