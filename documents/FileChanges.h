#pragma once

#include "documents/DocumentText.h"

namespace Norvik::Documents {

// Changes of the file inventory. The documents are checked ones. What comes out has its folders and
// files in the order of their bytes, each folder once for each state of its files. Keys of folders
// that are not known get lost there; those of files are kept.

/// Turns a total document into the one after the changes, with their "device". Raises
/// `DocumentError` if the changes are of another machine, create what is there, or modify or remove
/// what is not.
void ApplyToFiles(Json& document, Json changes);

/// The incremental document between two total ones; null if nothing differs. A file has changed if
/// its "lastMod" has.
Json FileDifference(Json before, Json after);

}  // namespace Norvik::Documents
