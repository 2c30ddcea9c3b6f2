#pragma once

#include <string>

#include "documents/DocumentText.h"

namespace Norvik::Documents {

/// The full document that results when a server applies an incremental one. All records of a
/// deleted identity are removed, an updated record replaces the first one of its identity, created
/// records are appended, and "device" is that of the incremental document. A null incremental
/// document changes nothing. The text is that of an agent: the keys of each object in ascending
/// order, on one line.
///
/// Throws `DocumentError` if a text is not a document of its kind, or if the two do not belong
/// together: the incremental one is of another machine, creates a record that exists, or updates or
/// deletes one that does not. Memory slots are the exception: no document says that one was added,
/// so an update of an unknown slot adds it.
///
/// Two documents of the file inventory are taken as well: `ApplyToFiles` has their rules.
std::string ApplyIncrement(const NamedText& full, const NamedText& incremental);

}  // namespace Norvik::Documents
