#pragma once

#include <boost/filesystem/path.hpp>
#include <string>
#include <vector>

#include "common/Api.h"

namespace Norvik::Common {

/// Deletes the files with an extension (given with or without its dot; case-sensitive) in a folder
/// and below it, at most 200 levels deep. Excluded entries and everything below them stay; links
/// are neither followed nor deleted. Never throws: an entry that cannot be read or deleted is
/// logged and skipped. A rehearsal only notes what would be deleted.
/// @param excluded files or folders; the entries "." and ".." of a folder are accepted and ignored
NORVIK_COMMON_API void DeleteExtensionInPath(const std::string& extension,
                                             const boost::filesystem::path& folder,
                                             const std::vector<boost::filesystem::path>& excluded);

}  // namespace Norvik::Common
