#pragma once

#include <string>

#include "documents/DocumentText.h"

namespace Norvik::Documents {

/// The full document that a server holds after it has taken an incremental one: deleted records
/// are gone, updated ones stand in place of the first of their identity, created ones at the end,
/// and "device" is the incremental document's. A null document changes nothing.
///
/// Raises `DocumentError` if a text is no such document, or if the two do not belong together: the
/// incremental one is of another machine, creates what is there, or updates or deletes what is
/// not. The one exception are memory slots, since no document tells that one was added or removed:
/// an update of an unknown slot adds it.
///
/// Serves the documents of the file inventory as well, if both are such: there a file is told by
/// its folder, its name and its extension, and the result is ordered by them.
std::string ApplyIncrement(const NamedText& full, const NamedText& incremental);

}  // namespace Norvik::Documents
