#pragma once

#include <boost/filesystem/path.hpp>

#include "common/files/KeyFile.h"

namespace Norvik::Host {

/// What a rotation did.
struct KeyRotation {
  Common::KeyIdentifier made{};
  Common::KeyIdentifier former{};
  boost::filesystem::path formerFile;  ///< where the former private key is kept
};

// The keys of a management server, in a folder of its own: `server.pub`, which agents get,
// `server.key`, and `server-FINGERPRINT.key` for each former private key. Both functions prepare
// all files before the first gets its name, and at no step is a private key without a file that
// holds it, so a crash loses none. They throw `UsageError` if the path is no folder, and
// `std::runtime_error` on other failures, also while another program changes these keys.

/// Makes the pair, and the folder, mode 0700, if it is missing. Throws if either file exists.
Common::KeyIdentifier MakeServerKeys(const boost::filesystem::path& folder);
/// Replaces the pair by a new one and keeps the former private key. Needs `server.key` only, so it
/// also mends a pair of which half is missing or does not fit.
KeyRotation RotateServerKeys(const boost::filesystem::path& folder);

}  // namespace Norvik::Host
