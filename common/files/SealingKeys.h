#pragma once

#include <boost/filesystem/path.hpp>
#include <string>

#include "common/Api.h"
#include "common/files/KeyFile.h"

namespace Norvik::Common {

/// The key files of a folder, each with one line of 64 hexadecimal digits: `server.pub`, the public
/// key of the server, and `agent.pub` and `agent.key` (mode 0600), a pair of this machine. Members
/// throw `std::runtime_error` if they find no usable key.
class NORVIK_COMMON_API SealingKeys {
 public:
  explicit SealingKeys(boost::filesystem::path folder);

  /// The public key to seal to: the server's if there is one, else this machine's own. Without any
  /// key it creates the pair and the folder; if several processes do that at once, all get the same
  /// pair.
  PublicKey ForSealing() const;
  /// Why there is no usable public key of the server, as in "FILE is missing"; empty if there is
  /// one. Never throws.
  std::string ServerKeyProblem() const;
  /// Both halves of this machine's own pair.
  void ForOpening(PublicKey& publicKey, PrivateKey& privateKey) const;
  /// The file of the private half, whether or not it exists.
  boost::filesystem::path OwnPrivateKey() const;

 private:
  PublicKey OwnKey() const;

  boost::filesystem::path folder_;
};

}  // namespace Norvik::Common
