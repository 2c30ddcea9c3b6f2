#pragma once

#include <array>
#include <boost/filesystem/path.hpp>

#include "common/Api.h"

namespace Norvik::Common {

using PublicKey = std::array<unsigned char, 32>;

/// A private key, wiped at its end.
class NORVIK_COMMON_API PrivateKey {
 public:
  PrivateKey() = default;
  PrivateKey(const PrivateKey&) = delete;
  PrivateKey& operator=(const PrivateKey&) = delete;
  ~PrivateKey();

  std::array<unsigned char, 32> bytes{};
};

/// The key files of a folder: `server.pub`, `agent.pub` and `agent.key`, each one line of 64
/// hexadecimal digits. Every member raises `std::runtime_error` if it finds no usable key.
class NORVIK_COMMON_API SealingKeys {
 public:
  explicit SealingKeys(boost::filesystem::path folder);

  /// The key to seal to: the server's, else the agent's own. Makes the agent's pair (and the
  /// folder) if there is no key at all; of several processes that do so at once one wins.
  PublicKey ForSealing() const;
  /// The agent's own pair.
  void ForOpening(PublicKey& publicKey, PrivateKey& privateKey) const;

 private:
  PublicKey OwnKey() const;

  boost::filesystem::path folder_;
};

}  // namespace Norvik::Common
