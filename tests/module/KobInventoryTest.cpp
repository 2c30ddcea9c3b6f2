#include "module/KobInventory.h"

#include <optional>

#include "common/identification/HostInfoProvider.h"
#include "common/text/Text.h"
#include "platform/RecordedMachine.h"
#include "support/FakeHost.h"
#include "support/ProgressRecorder.h"
#include "support/Test.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;

constexpr char FALLBACK[] =
    "KOB incremental will not be sent. An KOB total inventory will be sent instead";
constexpr char WRITTEN[] = "JSON data written to file successfully";

struct InventoryUnderTest {
  InventoryUnderTest() {
    auto& first = host.identification->first;
    first.operatingSystem.family = "LINUX";
    first.operatingSystem.name = "System";
    first.setup.modelIdentifier = "Model";
    first.physicalDisks.resize(1);
    first.networkAdapters.resize(2);
    first.networkAdapters[1].name = "en1";
    first.memory.devices.resize(1);
    first.memory.totalBytes = 8;
    first.setup.portConnectors.resize(1);
  }

  void Generate(bool incremental) {
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
  static void ExpectDocument(const std::string& text, const Json& wanted) {
    EXPECT_EQ(Shown(Chosen(Json::parse(text), wanted)), Shown(wanted));
  }
  fs::path PreviousDocument() const { return host.Previous() / DocumentName(); }

  /// Errors that were logged after the collectors ran. Those of the collectors depend on the
  /// machine.
  TextList LoggedErrors() const {
    TextList texts;
    for (const auto& line : log->Lines()) {
      if (line.text.rfind("Retrieving ", 0) == 0) texts.clear();
      if (line.level == 2) texts.push_back(line.text);
    }
    return texts;
  }

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

struct KobInventoryTest : testing::Test, InventoryUnderTest {};

TEST_F(KobInventoryTest, ATotalInventoryIsSealedInTheOutbox) {
  Generate(false);
  EXPECT_THAT(NamesIn(host.Outbox()), ElementsAre(DocumentName()));
  const std::string text = host.DeliveredDocument();
  EXPECT_EQ(text, ContentOf(PreviousDocument()));
  EXPECT_EQ(text.find('\n'), std::string::npos);

  const Json document = Json::parse(text);
  EXPECT_EQ(document.size(), 27U);
  const Json wanted = {{"agentConfiguration", {{"profileId", 7}}},
                       {"device", {{"guid", "agent-1"}, {"type", 2}, {"alias", Alias()}}},
                       {"networkAdapter", {{{"name", ""}}, {{"name", "en1"}}}},
                       {"os", {{"name", "System"}}},
                       {"memory", {{"totalBytes", 8}}},
                       {"memorySlot", {Json::object()}},
                       {"disk", {Json::object()}},
                       {"setup", {{"modelIdentifier", "Model"}}},
                       {"portConnectors", {Json::object()}},
                       {"startupCommand", nullptr},
                       {"features", nullptr},
                       {"processorSlot", nullptr},
                       {"location", nullptr},
                       {"cdrom", nullptr}};
  ExpectDocument(text, wanted);
  EXPECT_FALSE(document["user"].empty());
  EXPECT_TRUE(log->Holds(3, "Not implemented"));  // the startup commands
}

TEST_F(KobInventoryTest, TheSectionsAreRetrievedInOrderAndFirstThoseThatOthersNeed) {
  Generate(false);
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

TEST_F(KobInventoryTest, AFailureInTheMiddleOfASectionEndsItsProgress) {
  const ProgressRecording progress;
  const Platform::RecordedMachine machine(NORVIK_SOURCE_DIR "/tests/machines/nonsense-firmware");
  Generate(false);
  ASSERT_EQ(LoggedErrors().size(), 1u);
  EXPECT_THAT(LoggedErrors()[0], HasSubstr("Unable to generate kob inventory: "));
  const auto texts = progress->All();
  EXPECT_EQ(texts.at(texts.size() - 2), "+ bios");
  EXPECT_EQ(texts.back(), "- bios");
}

TEST_F(KobInventoryTest, TheFamilyDecidesTheTypeWhateverItsLetterCaseAndWithoutAReaderOfFirmware) {
  host.identification->smBios.reset();
  const std::pair<const char*, int> cases[] = {
      {"macos", 0}, {"WINDOWS", 1}, {"Linux", 2}, {"BeOS", 0}, {"", 0}};
  for (const auto& [family, type] : cases) {
    SCOPED_TRACE(family);
    host.identification->first.operatingSystem.family = family;
    Generate(false);
    ExpectDocument(
        host.DeliveredDocument(),
        {{"device", {{"type", type}}}, {"bios", {{"version", ""}}}, {"boards", nullptr}});
  }
}

TEST_F(KobInventoryTest, ADeviceWithoutItsIdentificationHasAnEmptyGuidAndItsTimeInMilliseconds) {
  const auto start = system_clock::now();
  KobInventory inventory(host.database, host.identification, {}, {}, 7);
  host.identification->first = {};
  host.identification.reset();
  inventory.GenerateInventory(false);
  const Json document = Json::parse(host.DeliveredDocument());
  EXPECT_EQ(document["networkAdapter"].size(), 2U) << "as they were at the start";
  const Json& device = document["device"];
  EXPECT_EQ(device["guid"], "");
  const system_clock::time_point taken(milliseconds(device["assetDate"].get<long long>()));
  EXPECT_GE(taken, start - milliseconds(1));
  EXPECT_LE(taken, system_clock::now());
}

struct InventoryRuns : testing::TestWithParam<Json>, InventoryUnderTest {
  fs::path Place(const std::string& place) const {
    const auto name = Common::HostInfoProvider::GetHostName();
    if (place == "previous") return PreviousDocument();
    if (place == "document") return host.Work() / DocumentName();
    if (place == "changes") return host.Work() / (name + "-incremental.jsonkob");
    return place == "waiting" ? host.Outbox() / "older.jsonkob" : host.Folder() / place;
  }
  static void Put(const fs::path& place, const Json& content) {
    if (content.is_null()) {
      fs::create_directory(place);
    } else if (content.is_object()) {
      const std::string target = content["link"];
      fs::create_symlink(target == "itself" ? place.filename() : fs::path(target), place);
    } else {
      WriteFile(place, content.get<Bytes>());
    }
  }
  /// The progress reports a fallback with the log line that gives the reason.
  void ExpectReason(const Json& row, const TextList& reported) const {
    TextList reasons;
    for (const auto& text : reported) {
      if (text.rfind("total instead: ", 0) == 0) reasons.push_back(text.substr(15));
    }
    TextList wanted;
    if (row.value("fallsBack", false)) {
      const auto errors = LoggedErrors();
      wanted = {errors.empty() ? row["logs"][0].get<std::string>().substr(2) : errors.back()};
    }
    EXPECT_EQ(reasons, wanted);
  }
  void ExpectDocuments(const Json& row) const {
    fs::remove(Place("waiting"));
    const std::string previous = ContentOf(PreviousDocument());
    const Json& wanted = PartOf(row, "previous");
    if (wanted.is_string()) {
      EXPECT_EQ(previous, wanted.get<std::string>());
    } else if (!wanted.empty()) {
      ExpectDocument(previous, wanted);
    }
    const Json& delivered = PartOf(row, "delivers");
    if (delivered == "previous") {
      EXPECT_EQ(host.DeliveredDocument(), previous);
    } else if (delivered == "plain") {
      EXPECT_EQ(ContentOf(host.Outbox() / DocumentName()), previous);
    } else if (!delivered.empty()) {
      ExpectDocument(host.DeliveredDocument(), delivered);
    }
  }
};

TEST_P(InventoryRuns, SendWhatTheyCanAndLogWhatTheyCannot) {
  const Json& row = GetParam();
  if (row.contains("after")) Generate(false);
  if (row.value("after", "") == "a change") host.identification->first.networkAdapters.pop_back();
  for (const auto& [place, content] : PartOf(row, "files").items()) Put(Place(place), content);
  host.pipeline->calls.clear();
  host.pipeline->failingStep = row.value("failing", "");
  const ProgressRecording progress;
  Generate(row.value("incremental", false));
  const auto reported = progress->All();
  ExpectReason(row, reported);
  std::vector<Matcher<std::string>> errors;
  for (const std::string text : PartOf(row, "errors")) errors.push_back(HasSubstr(text));
  EXPECT_THAT(LoggedErrors(), ElementsAreArray(errors));
  if (row.contains("failing")) {
    EXPECT_THAT(reported, Contains(row["failing"].get<std::string>() + " fails"));
  }
  for (const std::string line : PartOf(row, "logs")) {
    EXPECT_TRUE(log->Holds(line[0] - '0', line.substr(2))) << line;
  }
  EXPECT_EQ(log->Holds(3, FALLBACK), row.value("fallsBack", false));
  EXPECT_EQ(log->Holds(5, WRITTEN), row.value("writes", true));
  EXPECT_EQ(Json(host.pipeline->calls), row["calls"]);
  std::set<std::string> outbox;
  for (const auto& name : NamesIn(host.Outbox()))
    outbox.insert(name == DocumentName() ? "MAC.jsonkob" : name);
  EXPECT_EQ(Json(outbox), row["outbox"]);
  ExpectDocuments(row);
  if (row.contains("left")) {
    EXPECT_EQ(Json(NamesIn(host.Work())), row["left"]);
  }
  EXPECT_EQ(log->Lines().back().text == "<<", row.value("ends", true));
}

INSTANTIATE_TEST_SUITE_P(Rows, InventoryRuns, ValuesIn(DataOf("module/inventory-runs.json")),
                         [](const auto& row) -> std::string { return row.param["name"]; });

}  // namespace
}  // namespace Norvik::KOB
