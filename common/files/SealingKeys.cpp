#include "common/files/SealingKeys.h"

#include <boost/filesystem/operations.hpp>
#include <exception>
#include <string>
#include <utility>

namespace Norvik::Common {

namespace {

namespace fs = boost::filesystem;

constexpr char SERVER_KEY[] = "server.pub";

}  // namespace

SealingKeys::SealingKeys(fs::path folder) : folder_(std::move(folder)) { PrepareEncryption(); }

PublicKey SealingKeys::ForSealing() const {
  for (const char* name : {SERVER_KEY, "agent.pub"}) {
    if (!fs::exists(folder_ / name)) continue;
    PublicKey key;
    ReadKeyFile(folder_ / name, key);
    return key;
  }
  return OwnKey();
}

std::string SealingKeys::ServerKeyProblem() const {
  const fs::path path = folder_ / SERVER_KEY;
  boost::system::error_code ignored;
  if (fs::status(path, ignored).type() == fs::file_not_found) return path.string() + " is missing";
  try {
    PublicKey key;
    ReadKeyFile(path, key);
    return {};
  } catch (const std::exception& error) {
    return error.what();
  }
}

PublicKey SealingKeys::OwnKey() const {
  if (fs::create_directories(folder_)) fs::permissions(folder_, fs::owner_all);
  const fs::path path = OwnPrivateKey();
  PrivateKey key;
  if (!fs::exists(path)) {
    MakePrivateKey(key);
    WriteNewKeyFile(path, key.bytes);
  }
  // Read back: another process may have been first.
  ReadKeyFile(path, key.bytes);
  const PublicKey half = PublicHalf(key);
  WriteKeyFile(folder_ / "agent.pub", half);
  return half;
}

void SealingKeys::ForOpening(PublicKey& publicKey, PrivateKey& privateKey) const {
  ReadKeyFile(OwnPrivateKey(), privateKey.bytes);
  publicKey = PublicHalf(privateKey);
}

fs::path SealingKeys::OwnPrivateKey() const { return folder_ / "agent.key"; }

}  // namespace Norvik::Common
