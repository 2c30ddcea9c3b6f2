#include "module/KobInventory.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <boost/property_tree/json_parser.hpp>
#include <functional>
#include <optional>
#include <sstream>

#include "common/identification/HostInfoProvider.h"
#include "common/text/CharacterConverter.h"
#include "support/FakeHost.h"
#include "support/Files.h"

namespace Norvik::KOB {
namespace {

namespace fs = boost::filesystem;
using boost::property_tree::ptree;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using namespace Tests;

constexpr char FALLBACK[] =
    "KOB incremental will not be sent. An KOB total inventory will be sent instead";
constexpr char WRITTEN[] = "JSON data written to file successfully";

ptree Parse(const std::string& text) {
  std::istringstream stream(text);
  ptree tree;
  boost::property_tree::read_json(stream, tree);
  return tree;
}

class KobInventoryTest : public testing::Test {
 protected:
  KobInventoryTest() {
    auto& first = host.identification->first;
    first.operatingSystem.family = "LINUX";
    first.networkAdapters.resize(2);
    first.networkAdapters[0].name = "en0";
    first.networkAdapters[1].name = "en1";
    first.memory.devices.resize(1);
    first.memory.devices.front().name = "DIMM 0";
    first.setup.portConnectors.resize(1);
    first.setup.portConnectors.front().name = "J1";
    host.dependencies->configuration.communications.port = 0x10000 + 443;
    host.dependencies->configuration.communications.address = "server";
  }

  void Run(bool incremental) {
    const auto& configuration = host.dependencies->configuration;
    KobInventory inventory(host.database, host.identification, *configuration.kob,
                           configuration.communications, 7);
    log.reset();
    log.emplace();
    inventory.GenerateInventory(incremental);
  }
  std::string DocumentName() const { return Common::HostInfoProvider::GetHostName() + ".jsonkob"; }
  fs::path PreviousDocument() const { return host.Previous() / DocumentName(); }
  fs::path WorkingDocument() const { return host.Work() / DocumentName(); }

  /// The section names of the log, in order.
  static std::vector<std::string> Retrieved(const LogCapture& capture) {
    std::vector<std::string> names;
    for (const auto& text : capture.Texts(5)) {
      if (text.rfind("Retrieving ", 0) == 0) names.push_back(text.substr(11));
    }
    return names;
  }

  FakeHost host;
  std::optional<LogCapture> log;  ///< of the last run
};

TEST_F(KobInventoryTest, ATotalInventoryStandsSealedInTheOutbox) {
  Run(false);
  EXPECT_THAT(host.pipeline->calls, ElementsAre("copy", "compress", "encrypt", "move total"));
  EXPECT_THAT(NamesIn(host.Outbox()), ElementsAre(DocumentName()));
  const std::string text = host.DeliveredDocument();
  EXPECT_EQ(text, ContentOf(PreviousDocument()));
  EXPECT_EQ(text.find('\n'), std::string::npos);

  const ptree document = Parse(text);
  EXPECT_EQ(document.size(), 27U);
  EXPECT_EQ(document.get<int>("agentConfiguration.profileId"), 7);
  EXPECT_EQ(document.get<std::string>("device.guid"), "agent-1");
  EXPECT_EQ(document.get<int>("device.type"), 2);
  EXPECT_EQ(
      document.get<std::string>("device.alias"),
      Common::CharacterConverter::ChangeSpecialCharacter(Common::HostInfoProvider::GetHostName()));
  EXPECT_EQ(document.get_child("networkAdapter").size(), 2U);
  EXPECT_EQ(document.get_child("memorySlot").size(), 1U);
  EXPECT_EQ(document.get_child("portConnectors").size(), 1U);
  EXPECT_FALSE(document.get_child("user").empty());
  for (const char* key : {"features", "processorSlot", "location", "cdrom"}) {
    EXPECT_EQ(document.get<std::string>(key), "null") << key;
  }
}

TEST_F(KobInventoryTest, TheSectionsAreAskedForInTheirOrder) {
  Run(false);
  EXPECT_THAT(
      Retrieved(*log),
      ElementsAre("cdrom section", "configuration section", "device section", "hardware section",
                  "feature section", "Geolocation section", "local user section",
                  "keyboard section", "monitor section", "network drives section",
                  "printer section", "run command section", "service section",
                  "shared resources section", "bios section", "boardslots section", "video section",
                  "software registered section", "physical disk section", "processor section"));
}

TEST_F(KobInventoryTest, TheSectionsThatOthersNeedComeFirst) {
  const KobInventory inventory(host.database, host.identification, {}, {}, 7);
  EXPECT_THAT(Retrieved(host.log),
              ElementsAre("network adapters section", "setup section", "operating system section",
                          "system section", "Users Information", "memory section"));
}

TEST_F(KobInventoryTest, TheFamilyDecidesTheTypeWhateverItsLetterCase) {
  const std::pair<const char*, int> cases[] = {
      {"macos", 0}, {"WINDOWS", 1}, {"Linux", 2}, {"BeOS", 0}, {"", 0}};
  for (const auto& [family, type] : cases) {
    host.identification->first.operatingSystem.family = family;
    Run(false);
    EXPECT_EQ(Parse(host.DeliveredDocument()).get<int>("device.type"), type) << family;
  }
}

TEST_F(KobInventoryTest, AReaderThatHasGoneLeavesTheFirmwareEmpty) {
  host.identification->smBios.reset();
  Run(false);
  const ptree document = Parse(host.DeliveredDocument());
  EXPECT_EQ(document.get<std::string>("bios.version"), "");
  EXPECT_EQ(document.get<std::string>("boards"), "null");
}

struct PreviousCase {
  const char* name;
  std::function<void(const fs::path& document)> prepare;
  std::string complaint;
};

void PrintTo(const PreviousCase& given, std::ostream* stream) { *stream << given.name; }

class PreviousDocumentTest : public KobInventoryTest,
                             public testing::WithParamInterface<PreviousCase> {};

TEST_P(PreviousDocumentTest, GivesATotalInventoryInsteadAndIsHealed) {
  GetParam().prepare(PreviousDocument());
  WriteFile(host.Outbox() / "older.jsonkob", "undelivered");
  Run(true);
  EXPECT_THAT(log->Texts(2), ElementsAre(HasSubstr(GetParam().complaint)));
  EXPECT_TRUE(log->Holds(3, FALLBACK));
  EXPECT_THAT(host.pipeline->calls, ElementsAre("copy", "compress", "encrypt", "move total"));
  EXPECT_THAT(NamesIn(host.Outbox()), ElementsAre(DocumentName()));
  EXPECT_EQ(host.DeliveredDocument(), ContentOf(PreviousDocument()));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, PreviousDocumentTest,
    testing::Values(
        PreviousCase{"missing", [](const fs::path&) {}, "' does not exist"},
        PreviousCase{"empty", [](const fs::path& file) { WriteFile(file, ""); }, "' is empty"},
        PreviousCase{"cut", [](const fs::path& file) { WriteFile(file, "{\"cdrom\":[{"); },
                     "KOB incremental inventory will not be sent due to a JSON parsing error: "},
        PreviousCase{"without its sections", [](const fs::path& file) { WriteFile(file, "{}"); },
                     "KOB incremental inventory will not be sent due to an error: "}),
    [](const auto& given) {
      std::string name = given.param.name;
      std::replace(name.begin(), name.end(), ' ', '_');
      return name;
    });

TEST_F(KobInventoryTest, APreviousDocumentThatCannotBeAskedForIsNoBase) {
  fs::create_symlink(PreviousDocument().filename(), PreviousDocument());  // a link to itself
  Run(true);
  EXPECT_THAT(log->Texts(2), Contains(HasSubstr("Error checking existence of JSON file at '")));
  EXPECT_TRUE(log->Holds(3, FALLBACK));
}

TEST_F(KobInventoryTest, AMachineWithoutChangesSendsATotalInventory) {
  Run(false);
  Run(true);
  EXPECT_THAT(log->Texts(2), IsEmpty());
  EXPECT_TRUE(log->Holds(4, "No new updates. KOB incremental inventory will not be sent"));
  EXPECT_TRUE(log->Holds(3, FALLBACK));
  EXPECT_EQ(host.pipeline->calls.back(), "move total");
}

TEST_F(KobInventoryTest, AChangeIsSentAloneBesideWhatStillWaits) {
  Run(false);
  WriteFile(host.Outbox() / "older.jsonkob", "undelivered");
  host.identification->first.networkAdapters.pop_back();
  Run(true);
  EXPECT_EQ(host.pipeline->calls.back(), "move incremental");
  EXPECT_TRUE(log->Holds(5, "JSON KOB incremental inventory file renamed successfully"));
  EXPECT_FALSE(log->Holds(3, FALLBACK));
  EXPECT_TRUE(fs::remove(host.Outbox() / "older.jsonkob"));

  const ptree document = Parse(host.DeliveredDocument());
  EXPECT_EQ(document.size(), 4U);
  EXPECT_EQ(document.get_child("delete").size(), 1U);
  EXPECT_EQ(document.get_child("delete.networkAdapter").front().second.get<std::string>("name"),
            "en1");
  EXPECT_EQ(document.get<std::string>("create"), "null");
  EXPECT_EQ(document.get<std::string>("update"), "null");
  EXPECT_EQ(document.get<std::string>("device.guid"), "agent-1");
  // What the next run compares with is the full document all the same.
  EXPECT_EQ(Parse(ContentOf(PreviousDocument())).get_child("networkAdapter").size(), 1U);
}

struct StepCase {
  const char* step;
  const char* complaint;
  bool previousIsNew;
  bool inOutbox;
};

TEST_F(KobInventoryTest, AStepThatFailsIsLoggedAndStopsNothing) {
  const StepCase cases[] = {{"copy", "Unable to copy ", false, true},
                            {"compress", "Unable to compress ", true, true},
                            {"encrypt", "Unable to Encrypt ", true, true},
                            {"move", nullptr, true, false}};
  for (const auto& given : cases) {
    SCOPED_TRACE(given.step);
    fs::remove_all(host.Outbox());
    fs::remove_all(host.Work());
    WriteFile(PreviousDocument(), "older");
    host.pipeline->calls.clear();
    host.pipeline->failingStep = given.step;
    Run(false);
    EXPECT_THAT(host.pipeline->calls, ElementsAre("copy", "compress", "encrypt", "move total"));
    if (given.complaint) {
      EXPECT_THAT(log->Texts(2), Contains(HasSubstr(given.complaint)));
    }
    EXPECT_EQ(ContentOf(PreviousDocument()) != "older", given.previousIsNew);
    EXPECT_EQ(!NamesIn(host.Outbox()).empty(), given.inOutbox);
    EXPECT_TRUE(log->Holds(5, "Going out Inventory"));
    EXPECT_EQ(log->Lines().back().text, "<<");
  }
}

TEST_F(KobInventoryTest, ADocumentThatCouldNotBeSealedGoesOutPlain) {
  host.pipeline->failingStep = "encrypt";
  Run(false);
  EXPECT_EQ(ContentOf(host.Outbox() / DocumentName()), ContentOf(PreviousDocument()));
}

TEST_F(KobInventoryTest, AFullDiskEndsTheRunBeforeAnythingIsReplaced) {
  WriteFile(PreviousDocument(), "older");
  fs::create_symlink("/dev/full", WorkingDocument());
  Run(false);
  EXPECT_THAT(log->Texts(2),
              ElementsAre(HasSubstr("Unable to generate kob inventory: cannot write ")));
  EXPECT_FALSE(log->Holds(5, WRITTEN));
  EXPECT_THAT(host.pipeline->calls, IsEmpty());
  EXPECT_THAT(NamesIn(host.Outbox()), IsEmpty());
  EXPECT_EQ(ContentOf(PreviousDocument()), "older");
  EXPECT_THAT(NamesIn(host.Work()), IsEmpty());
  EXPECT_NE(log->Lines().back().text, "<<");
}

TEST_F(KobInventoryTest, ADocumentThatCannotBeOpenedIsLogged) {
  WriteFile(PreviousDocument(), "older");
  fs::create_directory(WorkingDocument());
  Run(false);
  EXPECT_THAT(log->Texts(2), Contains("Failed to open the output file"));
  EXPECT_FALSE(log->Holds(5, WRITTEN));
  EXPECT_EQ(ContentOf(PreviousDocument()), "older");
}

TEST_F(KobInventoryTest, AWorkFolderThatCannotBeMadeEndsTheRun) {
  fs::remove_all(host.Work());
  WriteFile(host.Folder() / "work", "in the way");
  Run(false);
  EXPECT_THAT(log->Texts(2), ElementsAre(HasSubstr("Unable to generate kob inventory: ")));
  EXPECT_THAT(host.pipeline->calls, IsEmpty());
}

TEST_F(KobInventoryTest, AnIdentificationThatHasGoneStopsTheMaking) {
  EXPECT_THROW(KobInventory(host.database, {}, {}, {}, 7), std::bad_weak_ptr);
}

}  // namespace
}  // namespace Norvik::KOB
