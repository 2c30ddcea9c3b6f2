#pragma once

#include "documents/DocumentText.h"

namespace Norvik::Documents {

// Whether two documents belong together. Each raises `DocumentError` if they do not.

/// Both of the machine inventory or both of the file inventory. What is no object is of no kind,
/// and passes.
void CheckSameKind(const Document& first, const Document& second);

/// Both with the same "guid" in "device".
void CheckSameMachine(const Json& known, const Json& told);

}  // namespace Norvik::Documents
