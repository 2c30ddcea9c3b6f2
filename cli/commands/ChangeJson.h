#pragma once

#include <string>

#include "cli/commands/Rendering.h"
#include "documents/DocumentChanges.h"

namespace Norvik::Cli {

/// A change as `history --changes --json` has it: "section", "change" ("came", "went" or
/// "changed"), "identity" and either "record" or "properties", each with "property", "from" if it
/// is known, and "to". All texts are UTF-8.
OrderedJson ToJson(const Documents::RecordChange& change);

/// The record of such a change for people: "Preview, 11.0", or the path of a file. Empty for a
/// single record.
std::string NameOfRecord(const OrderedJson& change);

}  // namespace Norvik::Cli
