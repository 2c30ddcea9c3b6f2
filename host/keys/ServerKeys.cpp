#include "host/keys/ServerKeys.h"

#include <fcntl.h>
#include <sys/file.h>

#include <boost/filesystem/operations.hpp>
#include <cerrno>
#include <stdexcept>
#include <string>

#include "host/HostError.h"
#include "platform/FileSystem.h"
#include "platform/ReplacementFile.h"

namespace Norvik::Host {

namespace {

namespace fs = boost::filesystem;

/// Keeps two programs from replacing each other's new key.
class FolderLock {
 public:
  explicit FolderLock(const fs::path& folder)
      : folder_(::open(folder.c_str(), O_RDONLY | O_CLOEXEC | O_DIRECTORY)) {
    if (!folder_.IsOpen()) {
      if (errno == ENOTDIR) throw UsageError(folder.string() + " is no folder");
      Platform::ThrowSystemError(errno, folder.string());
    }
    if (::flock(folder_.Get(), LOCK_EX | LOCK_NB) == 0) return;
    if (errno != EWOULDBLOCK) Platform::ThrowSystemError(errno, "cannot lock " + folder.string());
    throw std::runtime_error("another program changes the keys in " + folder.string());
  }

 private:
  Platform::FileDescriptor folder_;
};

/// A new pair in files that have not got their names yet.
class NewPair {
 public:
  explicit NewPair(const fs::path& folder)
      : private_((folder / "server.key").string()), public_((folder / "server.pub").string()) {
    Common::PrivateKey key;
    Common::MakePrivateKey(key);
    const Common::PublicKey half = Common::PublicHalf(key);
    Common::WriteKey(private_.Descriptor(), key.bytes);
    Common::WriteKey(public_.Descriptor(), half);
    identifier_ = Common::IdentifierOf(half);
  }

  Common::KeyIdentifier Identifier() const { return identifier_; }
  void Replace() {
    private_.Commit();
    public_.Commit();
  }
  bool CommitIfAbsent() { return private_.CommitIfAbsent() && public_.CommitIfAbsent(); }

 private:
  Platform::ReplacementFile private_;
  Platform::ReplacementFile public_;
  Common::KeyIdentifier identifier_{};
};

[[noreturn]] void ThrowExists(const fs::path& file) {
  throw std::runtime_error(file.string() + " exists; keys rotate " + file.parent_path().string() +
                           " makes a new pair and keeps the private key");
}

/// Writes the former key under its name, unless an interrupted rotation did.
void Keep(const Common::PrivateKey& key, const fs::path& file) {
  if (Common::WriteNewKeyFile(file, key.bytes)) return;
  Common::PrivateKey kept;
  Common::ReadKeyFile(file, kept.bytes);
  if (kept.bytes != key.bytes) throw std::runtime_error(file.string() + " holds another key");
}

}  // namespace

Common::KeyIdentifier MakeServerKeys(const fs::path& folder) {
  Common::PrepareEncryption();
  if (!fs::exists(folder)) {
    fs::create_directory(folder);
    fs::permissions(folder, fs::owner_all);
  }
  const FolderLock lock(folder);
  for (const char* name : {"server.key", "server.pub"}) {
    if (fs::symlink_status(folder / name).type() != fs::file_not_found) ThrowExists(folder / name);
  }
  NewPair pair(folder);
  if (!pair.CommitIfAbsent()) ThrowExists(folder / "server.pub");
  return pair.Identifier();
}

KeyRotation RotateServerKeys(const fs::path& folder) {
  Common::PrepareEncryption();
  const FolderLock lock(folder);
  const fs::path current = folder / "server.key";
  if (!fs::exists(current)) {
    throw std::runtime_error("there is no " + current.string() + "; keys make " + folder.string() +
                             " makes a pair");
  }
  Common::PrivateKey former;
  Common::ReadKeyFile(current, former.bytes);
  NewPair pair(folder);
  KeyRotation rotation;
  rotation.made = pair.Identifier();
  rotation.former = Common::IdentifierOf(Common::PublicHalf(former));
  rotation.formerFile = folder / ("server-" + Common::FingerprintOf(rotation.former) + ".key");
  Keep(former, rotation.formerFile);
  pair.Replace();
  return rotation;
}

}  // namespace Norvik::Host
