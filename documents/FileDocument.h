#pragma once

#include "documents/DocumentText.h"

namespace Norvik::Documents {

/// Whether a value is a document of the file inventory, by its key "typeInventory".
bool IsFileDocument(const Json& document);

// Checks of documents of the file inventory. Each throws `DocumentError` for a value of another
// kind. Unknown keys are allowed: a later version may write them.

/// A total document: each file has the state `KOB::WHOLE_INVENTORY`.
void CheckFullFileDocument(const Json& document);

/// An incremental document: null, or one whose files are new, modified or removed.
void CheckIncrementalFileDocument(const Json& document);

}  // namespace Norvik::Documents
