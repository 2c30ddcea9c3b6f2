#pragma once

#include "documents/DocumentText.h"

namespace Norvik::Documents {

// Checks of the machine inventory's documents. Each raises `DocumentError` for a value that is not
// of its kind. Keys that are not known are allowed, since a later version may write them.

/// A full document: an object with every section, each of its kind.
void CheckFullDocument(const Json& document);

/// An incremental document: null, or an object with "create", "delete", "device" and "update".
void CheckIncrementalDocument(const Json& document);

}  // namespace Norvik::Documents
