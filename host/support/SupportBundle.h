#pragma once

#include <boost/filesystem/path.hpp>

#include "host/OutputText.h"
#include "host/support/BundleFile.h"

namespace Norvik::Host {

/// Bytes of all files in a support archive, unpacked.
inline constexpr std::size_t MAX_BUNDLE = 5'000'000;

/// Redacts the content with one secret, cuts the logs, the oldest lines first, until all fits into
/// `MAX_BUNDLE`, and writes an archive, mode 0600, with a list of what is in it and what is not.
/// Returns that list: {"made", "agentVersion", "files": [{"name", "bytes"}],
/// "leftOut": [{"name", "why"}]}. Throws `UsageError` if the target exists, and another
/// `std::exception` if it cannot be written.
/// @param dataFolder whose identity and keys must be in no file; it may be missing
OrderedJson WriteSupportBundle(const boost::filesystem::path& dataFolder, BundleContent content,
                               const boost::filesystem::path& target);

}  // namespace Norvik::Host
