#pragma once

#include "documents/DocumentText.h"

namespace Norvik::Documents {

// Checks whether two documents belong together. Each throws `DocumentError` if they do not.

/// Both must be of the machine inventory or both of the file inventory. A second document that is
/// not an object passes: its kind cannot be determined, and a check of that kind reports it.
void CheckSameKind(const Document& first, const Document& second);

/// Both must have the same "guid" in "device"; an absent one equals null. Both must have a
/// "device".
void CheckSameMachine(const Json& full, const Json& incremental);

}  // namespace Norvik::Documents
