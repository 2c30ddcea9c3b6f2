#pragma once

#include <boost/filesystem/path.hpp>
#include <string>
#include <vector>

#include "common/Api.h"

namespace Norvik::Common {

/// Deletes the files with the extension (with or without its dot; letter case counts) in the folder
/// and below it. Excluded entries and what lies below them stay; links are neither followed nor
/// deleted. What cannot be deleted or read is logged and passed over. A rehearsal only
/// notes what would go.
NORVIK_COMMON_API void DeleteExtensionInPath(const std::string& extension,
                                             const boost::filesystem::path& folder,
                                             const std::vector<boost::filesystem::path>& excluded);

}  // namespace Norvik::Common
