#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "forge/DocumentSealer.h"
#include "forge/ForgeOptions.h"
#include "forge/MacDocuments.h"

namespace Norvik::Forge {

/// A file as it goes to the server.
struct Upload {
  std::string name;
  std::string bytes;
  std::string sha256;  ///< of the bytes, in hexadecimal digits
};

/// Where simulated agents get their files from: made when they are sent, made before, or read from
/// a folder that `norvik-forge documents --sealed` has written.
class UploadSource {
 public:
  /// Throws `std::runtime_error` if a key or the folder is missing.
  UploadSource(const AgentsOptions& options, const Profiles& profiles);

  /// Makes all files that `For` will be asked for.
  void Prepare();
  /// The files of a day of a Mac, in their order.
  std::vector<Upload> For(const Mac& mac, int day);
  /// A full document of that day, on request; empty if the key to seal it is missing.
  std::vector<Upload> Full(const Mac& mac, int day, MadeDocument::Kind kind);

 private:
  std::vector<Upload> Made(const Mac& mac, int day) const;
  std::vector<Upload> Read(const Mac& mac, int day) const;
  Upload Sealed(const MadeDocument& document, const Mac& mac) const;

  const AgentsOptions& options_;
  const Profiles& profiles_;
  std::unique_ptr<DocumentSealer> sealer_;
  std::map<std::pair<unsigned int, int>, std::vector<Upload>> prepared_;
};

}  // namespace Norvik::Forge
