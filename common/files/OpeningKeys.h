#pragma once

#include <boost/filesystem/path.hpp>
#include <list>
#include <string>
#include <vector>

#include "common/files/KeyFile.h"

namespace Norvik::Common {

/// A private key at hand.
struct OpeningKey {
  boost::filesystem::path file;
  KeyIdentifier identifier{};
  PublicKey publicKey{};
  PrivateKey privateKey;
};

/// The private keys that may open a sealed file. The constructor reads them; files that are no
/// usable keys are problems, which count only if no other key opens the file.
class NORVIK_COMMON_API OpeningKeys {
 public:
  /// @param places folders, whose files `*.key` are used in the order of their names, or key files
  explicit OpeningKeys(const std::vector<boost::filesystem::path>& places);

  const std::list<OpeningKey>& Keys() const { return keys_; }
  /// "tried: FINGERPRINT (FILE), ...; PROBLEM", or what kept it from trying any.
  std::string Tried() const;

 private:
  void AddFolder(const boost::filesystem::path& folder);
  void AddFile(const boost::filesystem::path& file);

  std::list<OpeningKey> keys_;
  std::vector<std::string> problems_;
};

}  // namespace Norvik::Common
