#include "host/identity/CopiedDataFolder.h"

#include "common/files/Paths.h"
#include "host/data/DataFolder.h"
#include "host/identity/AgentIdentity.h"
#include "support/Test.h"

namespace {

using namespace Norvik;
using namespace Norvik::Tests;

/// What is left of a data folder, and whether the agent is the same.
std::string AfterStartOn(const std::string& uuid, const std::string& madeOn) {
  const TemporaryFolder folder;
  const LogCapture log;
  Common::Paths::SetDataFolder(folder.Path());
  const auto file = folder / Host::IDENTITY_FILE;
  const std::string former = Host::AgentIdentity(file, madeOn).Get().identifier;
  for (const char* name :
       {"outbox/m.jsonkob", "previous/m.jsonkob", "keys/agent.key", "Agent.9.24.2.0.sqlite3",
        "statuses.jsonl", "configuration.json", "history/m.jsonkob", "answers/1.json"}) {
    fs::create_directories((folder / name).parent_path());
    WriteFile(folder / name, "x");
  }
  Host::ForgetOtherMachine(folder.Path(), uuid);
  const bool isSame = Host::AgentIdentity(file, uuid).Get().identifier == former;
  const auto stored = Host::ReadIdentity(file)->platformUuid;
  return (isSame ? "same " : "new ") + std::to_string(FilesBelow(folder.Path()).size()) + " " +
         stored + " " + std::to_string(log.Texts(3).size());
}

TEST(CopiedDataFolder, GetsANewIdentityAndKeepsOnlyConfigurationAndKeys) {
  EXPECT_EQ(AfterStartOn("B", "A"), "new 3 B 1");
  EXPECT_EQ(AfterStartOn("A", "A"), "same 9 A 0");
  EXPECT_EQ(AfterStartOn("a", "A"), "same 9 A 0");
  EXPECT_EQ(AfterStartOn("", "A"), "same 9 A 0");
  EXPECT_EQ(AfterStartOn("A", ""), "same 9 A 0");
}

}  // namespace
