#include <boost/filesystem/operations.hpp>
#include <iostream>

#include "common/files/KeyFile.h"
#include "common/files/OpeningKeys.h"
#include "receiver/commands/Commands.h"

namespace Norvik::Receiver {

namespace {

void MakeKeys(const std::string& folder) {
  const boost::filesystem::path path(folder);
  boost::filesystem::create_directories(path);
  boost::filesystem::permissions(path, boost::filesystem::owner_all);
  Common::PrivateKey key;
  Common::MakePrivateKey(key);
  if (!Common::WriteNewKeyFile(path / "server.key", key.bytes)) {
    throw std::runtime_error((path / "server.key").string() + " exists; nothing was changed");
  }
  Common::WriteKeyFile(path / "server.pub", Common::PublicHalf(key));
}

}  // namespace

int MakeOrListKeys(const Place& place, const std::string& action, const std::string& folder) {
  const std::string where = folder.empty() ? place.data + "/keys" : folder;
  if (action == "make") MakeKeys(where);
  const Common::OpeningKeys keys({where});
  if (keys.Keys().empty()) throw std::runtime_error(keys.Tried());
  std::vector<std::vector<std::string>> rows;
  for (const Common::OpeningKey& key : keys.Keys()) {
    rows.push_back({Common::FingerprintOf(key.identifier), key.file.string()});
  }
  PrintRows(place, {"fingerprint", "file"}, rows);
  return 0;
}

}  // namespace Norvik::Receiver
