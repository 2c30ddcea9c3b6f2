#include "host/keys/ServerKeys.h"

#include <sys/wait.h>
#include <unistd.h>

#include <boost/optional/optional_io.hpp>

#include "common/files/FileSealer.h"
#include "host/keys/KeyListing.h"
#include "platform/SystemChanges.h"
#include "support/Test.h"

namespace Norvik::Host {
namespace {

using namespace Tests;

/// Ends the process at a sync of a file or folder, or makes it fail.
struct EndingSync final : Platform::RealSystemChanges {
  EndingSync(int after, bool kills) : left(after), isKilled(kills) {}
  int Sync(int descriptor) override {
    if (left-- > 0) return RealSystemChanges::Sync(descriptor);
    if (isKilled) ::_exit(1);
    errno = ENOSPC;
    return -1;
  }
  int left;
  const bool isKilled;
};

/// Rotates in a process that ends or fails after some syncs; returns whether the rotation was done.
bool RotateUntil(const fs::path& folder, int syncs, bool kills) {
  const pid_t child = ::fork();
  if (child == 0) {
    Platform::SetSystemChanges(std::make_shared<EndingSync>(syncs, kills));
    try {
      RotateServerKeys(folder);
    } catch (const std::exception&) {
      ::_exit(1);
    }
    ::_exit(0);
  }
  int status = -1;
  ::waitpid(child, &status, 0);
  return status == 0;
}

TEST(ServerKeysTest, NoPrivateKeyIsLostWhereverARotationEnds) {
  int failures = 0;
  for (int step = 0; step < 14; ++step) {
    const TemporaryFolder folder;
    const fs::path keys = folder / "keys";
    MakeServerKeys(keys);
    WriteFile(folder / "plain", "text");
    const auto sealed = [&](int number) { return folder / ("sealed" + std::to_string(number)); };
    const Common::FileSealer sealer(keys);
    sealer.Seal(folder / "plain", sealed(0));
    failures += RotateUntil(keys, step / 2, step % 2 == 0) ? 0 : 1;
    // Agents may have got whatever public key is there.
    sealer.Seal(folder / "plain", sealed(1));
    RotateServerKeys(keys);
    sealer.Seal(folder / "plain", sealed(2));
    for (int number : {0, 1, 2}) {
      sealer.Open(sealed(number), folder / "opened");
      EXPECT_EQ(ContentOf(folder / "opened"), "text") << step << " " << number;
    }
    for (const ListedKey& key : KeysIn(keys).keys) EXPECT_TRUE(key.fits.get_value_or(true));
  }
  // Three files and their folder are synced, one after the other; the last sync of all may fail.
  EXPECT_EQ(failures, 6 + 5);
}

TEST(ServerKeysTest, ListsKeysWithWhatIsWrongWithThem) {
  const TemporaryFolder folder;
  const std::string key = Common::FingerprintOf(MakeServerKeys(folder.Path()));
  const auto file = [&](const char* name) { return folder / name; };
  fs::permissions(file("server.key"), static_cast<fs::perms>(0640));
  fs::permissions(folder.Path(), static_cast<fs::perms>(0770));
  WriteFile(file("agent.pub"), std::string(64, '1'));
  fs::copy_file(file("server.key"), file("agent.key"));
  fs::permissions(file("agent.key"), static_cast<fs::perms>(0600));
  for (const char* name : {"short.key", "short.pub"}) WriteFile(file(name), std::string(62, '1'));
  WriteFile(file("notes.txt"), "");
  const KeyListing listing = KeysIn(folder.Path());
  ASSERT_EQ(listing.keys.size(), 4u);
  const auto& [agentPrivate, agentPublic, serverPrivate, serverPublic] =
      std::tie(listing.keys[0], listing.keys[1], listing.keys[2], listing.keys[3]);
  EXPECT_EQ(agentPrivate.fits, false);
  EXPECT_EQ(agentPublic.fits, false);
  EXPECT_TRUE(serverPrivate.isPrivate && !serverPublic.isPrivate);
  EXPECT_EQ(serverPublic.fits, true);
  EXPECT_EQ(serverPublic.fingerprint, key);
  EXPECT_EQ(serverPrivate.fingerprint, key);
  EXPECT_THAT(serverPrivate.warnings,
              ElementsAre("others may use it, mode 0640",
                          "others may replace files of its folder, mode 0770"));
  EXPECT_THAT(agentPrivate.warnings, ElementsAre(HasSubstr("others may replace")));
  EXPECT_THAT(listing.problems,
              ElementsAre(HasSubstr("short.key is no key"), HasSubstr("short.pub is no key")));
}

}  // namespace
}  // namespace Norvik::Host
