#pragma once

#include "documents/DocumentText.h"

namespace Norvik::Documents {

// Checks of documents of the machine inventory. Each throws `DocumentError` for a value of another
// kind. Unknown keys of records, and unknown sections of a full document, are allowed: a later
// version may write them.

/// A full document: an object with every section, each a record or a list of records as its kind
/// requires. The records of a list must have the fields of their identity.
void CheckFullDocument(const Json& document);

/// An incremental document: null, or an object with "create", "delete", "device" and "update". An
/// unknown section in one of them is an error: the change in it would be lost.
void CheckIncrementalDocument(const Json& document);

}  // namespace Norvik::Documents
