#pragma once

#include "documents/DocumentText.h"

namespace Norvik::Documents {

// Comparison and changes of documents of the file inventory. The arguments must have passed the
// checks of FileDocument.h. A file is identified by its folder, name and extension; several may
// share an identity, since documents hold extensions in upper case. Results list folders and files
// in byte order, a folder once for each state of its files. Unknown keys of files are kept, those
// of folders are lost.

/// Replaces a total document by the one after the changes, whose "device" it takes.
///
/// A removal removes the file that equals it in every value but the state, or the first one of its
/// identity if no file does. A modification replaces the first one of its identity. Throws
/// `DocumentError` if the changes are of another machine, create a file that exists, or modify or
/// remove one that does not.
void ApplyToFiles(Json& document, Json changes);

/// The incremental document between two total ones; null if nothing differs. A file has changed if
/// its "lastMod" has.
Json FileDifference(Json before, Json after);

}  // namespace Norvik::Documents
