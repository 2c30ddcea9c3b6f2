#pragma once

#include "documents/DocumentText.h"

namespace Norvik::Documents {

/// State of a file in a document of the file inventory.
enum FileStatus : int { WHOLE_INVENTORY = -1, NEW_FILE = 1, MODIFIED_FILE = 2, REMOVED_FILE = 3 };

/// Whether a document is one of the file inventory, rather than of the machine inventory.
bool IsFileDocument(const Json& document);

// Checks of the file inventory's documents. Each raises `DocumentError` for a value that is not of
// its kind. Keys that are not known are allowed, since a later version may write them.

/// A total document: all its files have the state `WHOLE_INVENTORY`.
void CheckFullFileDocument(const Json& document);

/// An incremental document: null, or one whose files are new, modified or removed.
void CheckIncrementalFileDocument(const Json& document);

}  // namespace Norvik::Documents
