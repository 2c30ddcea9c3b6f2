#pragma once

namespace Norvik::KOB {

/// State of a file in a document of the file inventory; the numbers are those of its "fileStatus".
/// A total document has only `WHOLE_INVENTORY`, an incremental one only the others.
enum FileStatus : int { WHOLE_INVENTORY = -1, NEW_FILE = 1, MODIFIED_FILE = 2, REMOVED_FILE = 3 };

}  // namespace Norvik::KOB
