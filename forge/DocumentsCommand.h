#pragma once

#include <iosfwd>
#include <string>

#include "forge/ForgeOptions.h"
#include "forge/Mac.h"

namespace Norvik::Forge {

/// Writes the documents of a fleet: `FOLDER/mac-000017/0003-incremental-inventory.json` is what
/// changed on day 3 of Mac 17. In the order of their names they are in that of their days.
/// @param output  gets a summary, or the documents themselves, one on each line
void WriteDocuments(const DocumentsOptions& options, std::ostream& output);

/// The name of a Mac's folder, and how the names of a day's documents begin.
std::string FolderOf(const Mac& mac);
std::string DayPrefix(int day);

}  // namespace Norvik::Forge
