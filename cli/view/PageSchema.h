#pragma once

#include "cli/commands/Rendering.h"

namespace Norvik::Cli {

/// What the schemas say of each section, in their order: {SECTION: {"description", "kind",
/// "identity", "fields": {PATH: {"description", "source", "type", "unit"}}}}. "kind" is
/// "list" or "record", PATH as "partition.sizeBytes". The files of a file inventory are the section
/// "paths".
/// @param ofMac whether the documents are of a Mac: sources of other systems differ
OrderedJson PageSchema(bool ofMac);

/// Why each section of the machine inventory may be empty: {SECTION: {"missing", "needs"}}.
OrderedJson PageExplanations(bool ofMac);

}  // namespace Norvik::Cli
