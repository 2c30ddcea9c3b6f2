#include "module/KobInventory.h"

#include <gmock/gmock.h>

#include <boost/filesystem/operations.hpp>
#include <optional>

#include "common/identification/HostInfoProvider.h"
#include "common/text/CharacterConverter.h"
#include "support/Cases.h"
#include "support/FakeHost.h"
#include "support/Json.h"

namespace Norvik::KOB {
namespace {

namespace fs = boost::filesystem;
using boost::property_tree::ptree;
using namespace testing;
using namespace Tests;
using tests::ParseJson;

constexpr char FALLBACK[] =
    "KOB incremental will not be sent. An KOB total inventory will be sent instead";
constexpr const char* TOTAL_STEPS[] = {"copy", "compress", "encrypt", "move total"};
constexpr char WRITTEN[] = "JSON data written to file successfully";

class KobInventoryTest : public testing::Test {
 protected:
  KobInventoryTest() {
    auto& first = host.identification->first;
    first.operatingSystem.family = "LINUX";
    first.networkAdapters.resize(2);
    first.networkAdapters[1].name = "en1";
    first.memory.devices.resize(1);
    first.setup.portConnectors.resize(1);
  }

  void Run(bool incremental) {
    KobInventory inventory(host.database, host.identification, {}, {}, 7);
    log.reset();
    log.emplace();
    inventory.GenerateInventory(incremental);
  }
  static std::string Alias() {
    const auto name = Common::HostInfoProvider::GetHostName();
    return Common::CharacterConverter::ChangeSpecialCharacter(name);
  }
  std::string DocumentName() const { return Common::HostInfoProvider::GetHostName() + ".jsonkob"; }
  fs::path PreviousDocument() const { return host.Previous() / DocumentName(); }
  fs::path WorkingDocument() const { return host.Work() / DocumentName(); }

  /// Errors that were logged behind the collectors: what these miss is not this machine's fault.
  std::vector<std::string> Complaints() const {
    std::vector<std::string> texts;
    for (const auto& line : log->Lines()) {
      if (line.text.rfind("Retrieving ", 0) == 0) texts.clear();
      if (line.level == 2) texts.push_back(line.text);
    }
    return texts;
  }

  /// The section names of the log, in order.
  static std::string Retrieved(const LogCapture& capture) {
    std::string names;
    for (const auto& text : capture.Texts(5)) {
      if (text.rfind("Retrieving ", 0) == 0) names += text.substr(11) + ", ";
    }
    return names;
  }

  FakeHost host;
  std::optional<LogCapture> log;  ///< of the last run
};

TEST_F(KobInventoryTest, ATotalInventoryStandsSealedInTheOutbox) {
  Run(false);
  EXPECT_THAT(host.pipeline->calls, ElementsAreArray(TOTAL_STEPS));
  EXPECT_THAT(NamesIn(host.Outbox()), ElementsAre(DocumentName()));
  const std::string text = host.DeliveredDocument();
  EXPECT_EQ(text, ContentOf(PreviousDocument()));
  EXPECT_EQ(text.find('\n'), std::string::npos);

  const Json document = Json::parse(text);
  EXPECT_EQ(document.size(), 27U);
  const Json wanted = {{"agentConfiguration", {{"profileId", 7}}},
                       {"device", {{"guid", "agent-1"}, {"type", 2}, {"alias", Alias()}}},
                       {"networkAdapter", {{{"name", ""}}, {{"name", "en1"}}}},
                       {"memorySlot", {Json::object()}},
                       {"portConnectors", {Json::object()}},
                       {"features", nullptr},
                       {"processorSlot", nullptr},
                       {"location", nullptr},
                       {"cdrom", nullptr}};
  EXPECT_EQ(Shown(Chosen(document, wanted)), Shown(wanted));
  EXPECT_FALSE(document["user"].empty());
}

TEST_F(KobInventoryTest, TheSectionsAreAskedForInTheirOrderAndFirstThoseThatOthersNeed) {
  Run(false);
  EXPECT_EQ(Retrieved(host.log),
            "network adapters section, setup section, operating system section, system section, "
            "Users Information, memory section, ");
  EXPECT_EQ(Retrieved(*log),
            "cdrom section, configuration section, device section, hardware section, feature "
            "section, Geolocation section, local user section, keyboard section, monitor section, "
            "network drives section, printer section, run command section, service section, shared "
            "resources section, bios section, boardslots section, video section, software "
            "registered section, physical disk section, processor section, ");
}

TEST_F(KobInventoryTest, TheFamilyDecidesTheTypeWhateverItsLetterCaseAndWithoutAReaderOfFirmware) {
  host.identification->smBios.reset();
  const std::pair<const char*, int> cases[] = {
      {"macos", 0}, {"WINDOWS", 1}, {"Linux", 2}, {"BeOS", 0}, {"", 0}};
  for (const auto& [family, type] : cases) {
    host.identification->first.operatingSystem.family = family;
    Run(false);
    const ptree document = ParseJson(host.DeliveredDocument());
    EXPECT_EQ(document.get<int>("device.type"), type) << family;
    EXPECT_EQ(document.get<std::string>("bios.version"), "");
    EXPECT_EQ(document.get<std::string>("boards"), "null");
  }
}

TEST_F(KobInventoryTest, AUselessPreviousDocumentGivesATotalInventoryInsteadAndIsHealed) {
  const std::string garbage(100'000'000, 'x');
  const struct {
    const char* content;  ///< null: there is no document
    const char* complaint;
  } rows[] = {
      {nullptr, "' does not exist"},
      {"", "' is empty"},
      {"{\"cdrom\":[{", "KOB incremental inventory will not be sent due to a JSON parsing error: "},
      {"{}", "KOB incremental inventory will not be sent due to an error: No such node (cdrom)"},
      {R"({"cdrom":{"name":"x"}})", "due to an error: cdrom is no list of records"},
      {garbage.c_str(), "due to a JSON parsing error: "}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.complaint);
    fs::remove(PreviousDocument());
    if (row.content) WriteFile(PreviousDocument(), row.content);
    WriteFile(host.Outbox() / "older.jsonkob", "undelivered");
    host.pipeline->calls.clear();
    Run(true);
    EXPECT_THAT(Complaints(), ElementsAre(HasSubstr(row.complaint)));
    EXPECT_TRUE(log->Holds(3, FALLBACK));
    EXPECT_THAT(host.pipeline->calls, ElementsAreArray(TOTAL_STEPS));
    EXPECT_THAT(NamesIn(host.Outbox()), ElementsAre(DocumentName()));
    EXPECT_EQ(host.DeliveredDocument(), ContentOf(PreviousDocument()));
  }
}

TEST_F(KobInventoryTest, APreviousDocumentThatCannotBeAskedForIsNoBase) {
  fs::create_symlink(PreviousDocument().filename(), PreviousDocument());  // a link to itself
  Run(true);
  EXPECT_THAT(log->Texts(2), Contains(HasSubstr("Error checking existence of JSON file at '")));
  EXPECT_TRUE(log->Holds(3, FALLBACK));
}

TEST_F(KobInventoryTest, AMachineWithoutChangesSendsATotalInventory) {
  Run(false);
  Run(true);
  EXPECT_THAT(Complaints(), IsEmpty());
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

  const ptree document = ParseJson(host.DeliveredDocument());
  EXPECT_EQ(document.size(), 4U);
  EXPECT_EQ(document.get_child("delete").size(), 1U);
  EXPECT_EQ(document.get_child("delete.networkAdapter").front().second.get<std::string>("name"),
            "en1");
  EXPECT_EQ(document.get<std::string>("create"), "null");
  EXPECT_EQ(document.get<std::string>("update"), "null");
  EXPECT_EQ(document.get<std::string>("device.guid"), "agent-1");
  // What the next run compares with is the full document all the same.
  EXPECT_EQ(ParseJson(ContentOf(PreviousDocument())).get_child("networkAdapter").size(), 1U);
}

TEST_F(KobInventoryTest, AStepThatFailsIsLoggedAndStopsNothing) {
  const struct {
    const char* step;
    const char* complaint;
    bool previousIsNew;
    bool inOutbox;
  } cases[] = {{"copy", "Unable to copy ", false, true},
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
    EXPECT_THAT(host.pipeline->calls, ElementsAreArray(TOTAL_STEPS));
    if (given.complaint) {
      EXPECT_THAT(log->Texts(2), Contains(HasSubstr(given.complaint)));
    }
    EXPECT_EQ(ContentOf(PreviousDocument()) != "older", given.previousIsNew);
    EXPECT_EQ(!NamesIn(host.Outbox()).empty(), given.inOutbox);
    if (given.step == std::string("encrypt")) {  // goes out plain
      EXPECT_EQ(ContentOf(host.Outbox() / DocumentName()), ContentOf(PreviousDocument()));
    }
    EXPECT_TRUE(log->Holds(5, "Going out Inventory"));
    EXPECT_EQ(log->Lines().back().text, "<<");
  }
}

TEST_F(KobInventoryTest, AFullDiskEndsTheRunBeforeAnythingIsReplaced) {
  WriteFile(PreviousDocument(), "older");
  fs::create_symlink("/dev/full", WorkingDocument());
  Run(false);
  EXPECT_THAT(Complaints(),
              ElementsAre(HasSubstr("Unable to generate kob inventory: cannot write ")));
  EXPECT_FALSE(log->Holds(5, WRITTEN));
  EXPECT_THAT(host.pipeline->calls, IsEmpty());
  EXPECT_THAT(NamesIn(host.Outbox()), IsEmpty());
  EXPECT_EQ(ContentOf(PreviousDocument()), "older");
  EXPECT_THAT(NamesIn(host.Work()), IsEmpty());
  EXPECT_NE(log->Lines().back().text, "<<");
}

TEST_F(KobInventoryTest, ADocumentThatCannotBeOpenedOrAFolderThatCannotBeMadeIsLogged) {
  WriteFile(PreviousDocument(), "older");
  fs::create_directory(WorkingDocument());
  Run(false);
  EXPECT_THAT(log->Texts(2), Contains("Failed to open the output file"));
  EXPECT_FALSE(log->Holds(5, WRITTEN));
  EXPECT_EQ(ContentOf(PreviousDocument()), "older");

  fs::remove_all(host.Work());
  WriteFile(host.Folder() / "work", "in the way");
  host.pipeline->calls.clear();
  Run(false);
  EXPECT_THAT(Complaints(), ElementsAre(HasSubstr("Unable to generate kob inventory: ")));
  EXPECT_THAT(host.pipeline->calls, IsEmpty());
}

}  // namespace
}  // namespace Norvik::KOB
