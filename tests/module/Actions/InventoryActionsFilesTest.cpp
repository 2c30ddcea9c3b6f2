#include <gmock/gmock.h>

#include <boost/filesystem/operations.hpp>
#include <thread>

#include "common/database/DataBase.h"
#include "module/DataAccess/KOBDataSourceV2.h"
#include "module/ModuleUnderTest.h"
#include "module/RUD/Data/RudDataSourceV2.h"
#include "support/Cases.h"
#include "support/FullDisk.h"
#include "support/OnlyBelow.h"

namespace Norvik::KOB {
namespace {

namespace fs = boost::filesystem;
using namespace Tests;
using Common::V2::DataBase;
using std::chrono::system_clock;
using namespace testing;
using V2::RudDataSource;

void EndOfLastTotal(std::chrono::hours ago) {
  KOBDataSourceV2::updateRudCompletoLastInventory(system_clock::now() - ago);
}

/// A module whose walk finds nothing but the files of one folder.
class FileInventoryTest : public testing::Test {
 protected:
  FileInventoryTest() {
    auto& configuration = *host.dependencies->configuration.kob;
    configuration.excludedPaths = AllBut(tree.Path());
    configuration.includedExtensions = {"norvikdoc"};
    module.emplace(host);
  }
  void Make(const std::string& name) { WriteFile(tree / name, "content"); }
  void Touch(const std::string& name) {
    fs::last_write_time(tree / name, fs::last_write_time(tree / name) + 10);
  }
  /// The statuses that a request alone gives.
  std::vector<std::string> Request(unsigned int code) {
    module->Run(code);
    return host.communications->TakeStatuses();
  }
  /// The statuses from the request to the end of the run.
  std::vector<std::string> Run(unsigned int code) {
    module->Run(code);
    host.actions->RunWaiting();
    return host.communications->TakeStatuses();
  }
  /// The files of the document in the outbox, as "status name"; the file leaves the outbox.
  std::vector<std::string> Delivered() {
    const Json document = Json::parse(host.DeliveredDocument());
    fs::remove(host.Outbox() / NamesIn(host.Outbox()).front());
    std::vector<std::string> files;
    for (const auto& path : document["paths"]) {
      EXPECT_EQ(path["pathName"], tree.Path().string());
      for (const auto& file : path["files"]) {
        files.push_back(std::to_string(file["fileStatus"].get<int>()) + " " +
                        file["filename"].get<std::string>());
      }
    }
    std::sort(files.begin(), files.end());
    return files;
  }
  /// From now on keeps the states that the row goes through.
  void RecordStates() {
    TestDatabase::Run("create table STATES(state INTEGER)");
    for (const char* event : {"insert", "update"}) {
      TestDatabase::Run(std::string("create trigger on_") + event + " after " + event +
                        " on RUD2_CURRENT_STATUS begin "
                        "insert into STATES values(new.id_state_harverting); end");
    }
  }
  std::vector<int> States() {
    std::vector<int> states;
    for (const auto& row : TestDatabase::Run("select state from STATES order by rowid")) {
      states.push_back(boost::get<int>(row.at(0)));
    }
    return states;
  }
  TemporaryFolder tree;
  FakeHost host;
  boost::optional<ModuleUnderTest> module;
};

TEST_F(FileInventoryTest, ATotalAndThenAnIncrementalInventoryReachTheOutbox) {
  Make("old.norvikdoc");
  Make("it's.NORVIKDOC");
  Make("other.txt");
  RecordStates();
  EXPECT_THAT(Run(1037), ElementsAre("7", "2"));
  EXPECT_THAT(Delivered(), ElementsAre("-1 it s", "-1 old"));
  EXPECT_EQ(host.communications->newFiles, 1);
  EXPECT_THAT(States(), ElementsAre(3, 4, 5, 2));
  EXPECT_THAT(host.pipeline->calls, ElementsAre("compress", "encrypt", "move"));

  fs::remove(tree / "old.norvikdoc");
  Make("new.norvikdoc");
  Touch("it's.NORVIKDOC");
  TestDatabase::Run("delete from STATES");
  EXPECT_THAT(Run(1038), ElementsAre("7", "2"));
  EXPECT_THAT(Delivered(), ElementsAre("1 new", "2 it s", "3 old"));
  EXPECT_THAT(States(), ElementsAre(3, 4, 5, 4, 2));
  EXPECT_THAT(RudDataSource::GetLastInventory(), SizeIs(2));

  EXPECT_THAT(Run(1038), ElementsAre("7", "2"));
  EXPECT_THAT(NamesIn(host.Outbox()), IsEmpty());
  EXPECT_EQ(host.communications->newFiles, 2);
  EXPECT_TRUE(host.log.Holds(3, "RUD File empty. With nothing to send."));
}

TEST(FileInventory, TheDayAndTheBaseDecideWhatRuns) {
  for (const Json& row : DataOf("module/Actions/InventoryActionsFiles.json")) {
    SCOPED_TRACE(Shown(row));
    FakeHost host;
    host.dependencies->configuration.kob->includedExtensions = {"norvikdoc"};
    ModuleUnderTest module(host);
    EndOfLastTotal(std::chrono::hours(row.value("total today", false) ? 0 : 24));
    if (row.value("base", true))
      TestDatabase::Run("insert into RUD2_LAST_INVENTORY(absolute_path) values('/a')");
    module.Run(row["code"]);
    EXPECT_THAT(host.communications->TakeStatuses(), ElementsAre(row.value("status", "7")));
    const std::string started = row.value("started", "");
    EXPECT_EQ(host.log.Holds(4, "RUD Inventory Started: 0"), started == "total");
    EXPECT_EQ(host.log.Holds(4, "RUD Inventory Started: 1"), started == "incremental");
    for (const std::string key : {"RUD_INVENTORY", "RUD_INVENTORY_INCREMENTAL"}) {
      EXPECT_EQ(DataBase::GetDataTable(key) != 0, key == row.value("recorded", "")) << key;
    }
    if (started.empty()) continue;
    auto run = host.actions->Last(1060);
    EXPECT_EQ(run.delay.count(), 0);
    EXPECT_EQ(run.action.parameters.Get<bool>("incremental"), started == "incremental");
  }
}

TEST_F(FileInventoryTest, ARequestDuringARunIsAcceptedAndThenTurnedAway) {
  EXPECT_THAT(Request(1047), ElementsAre("7"));
  DataBase::SetDataTable("RUD_INVENTORY", 1);
  EXPECT_THAT(Request(1047), ElementsAre("7"));
  EXPECT_GT(DataBase::GetDataTable("RUD_INVENTORY"), 1);
  EXPECT_TRUE(host.log.Holds(3, "RUD is running, kindly wait until it finishes"));
  EXPECT_THAT(host.actions->Texts(), ElementsAre("once 1060 +0"));
  host.actions->RunWaiting();
  EXPECT_THAT(host.communications->TakeStatuses(), ElementsAre("2"));
  // With no run left, the second half has nothing to do.
  host.actions->QueueAction(host.actions->Last(1060).action);
  host.actions->RunWaiting();
  EXPECT_THAT(host.communications->TakeStatuses(), IsEmpty());
}

TEST_F(FileInventoryTest, WhileAnotherRequestIsDecidedAllAreRefused) {
  std::vector<std::string> refused;
  host.actions->onNextStart = [&] {
    std::thread([&] {
      host.communications->TakeStatuses();
      for (const unsigned int code : {1047U, 1037U, 1041U, 1038U}) module->Run(code);
      refused = host.communications->TakeStatuses();
    }).join();
  };
  module->Run(1037);
  EXPECT_THAT(refused, AllOf(SizeIs(4), Each("8 RUD Inventory already running")));
  EXPECT_THAT(host.log.Texts(3), Contains("RUD Inventory already running").Times(4));
}

TEST_F(FileInventoryTest, TheConfigurationBecomesTheWalks) {
  auto& configuration = *host.dependencies->configuration.kob;
  configuration.excludedFiles = {""};
  configuration.excludedPaths = {"/b", "/a"};
  configuration.includedExtensions = {"Txt", ".Gz"};
  configuration.additionalExtensions = {"EXE", "CPL", "exe", "EXE2"};
  module.emplace(host);
  Request(1037);
  const auto texts = host.log.Texts(4);
  EXPECT_THAT(texts, AllOf(Contains("RUD config for Exclude file: [, ]"),
                           Contains("RUD config for Exclude path: [/a, /b]"),
                           Contains("RUD config for Include path: [/]"),
                           Contains("RUD config for Include extension: [.EXE, .EXE2, .GZ, .TXT, "
                                    ".exe, .exe2, .gz, .txt, EXE, EXE2, TXT, exe, exe2, txt]")));
}

TEST_F(FileInventoryTest, WithoutAConfigurationNothingRuns) {
  host.dependencies->configuration.kob = boost::none;
  module.emplace(host);
  EXPECT_THAT(Run(1037), ElementsAre("7"));
  EXPECT_THAT(host.actions->Texts(), IsEmpty());
  EXPECT_TRUE(host.log.Holds(3, "RUD doesn't have a valid configuration"));
}

TEST_F(FileInventoryTest, AFailureBeforeTheRunDoesNotTurnAwayTheNext) {
  host.identification->failure = "no facts";
  EXPECT_THROW(module->Run(1037), std::runtime_error);
  host.identification->failure.clear();
  EXPECT_THAT(Run(1037), ElementsAre("7", "7", "2"));
}

/// Something that a run meets while it lives.
using Fault = std::shared_ptr<void>;

/// Another connection writes, and nobody waits for it as long as in earnest.
Fault HeldDatabase(FakeHost&) {
  auto other = std::make_shared<DataBase>();
  TestDatabase::Run("PRAGMA busy_timeout=20");
  other->ExecuteSentence("insert into DATA(name, value) values('held', '1')");
  return other;
}

Fault DiskThatSavingFills(FakeHost& host) {
  return std::make_shared<FullDisk>(fs::file_size(host.database.File().string() + "-wal") + 400000);
}

Fault DiskThatIsFullBehindTheDocument(FakeHost& host) {
  auto full = std::make_shared<std::unique_ptr<FullDisk>>();
  host.pipeline->beforeStep = [full](const std::string& step) {
    if (step == "compress") *full = std::make_unique<FullDisk>(10);
  };
  return full;
}

Fault MissingTable(FakeHost&) {
  TestDatabase::Run("alter table RUD2_FILE_PATH rename to MISSING");
  return {nullptr,
          [](void*) { TestDatabase::Run("alter table MISSING rename to RUD2_FILE_PATH"); }};
}

TEST_F(FileInventoryTest, AFaultEndsOneRunAndTheStateTellsWhatIsKnownOfIt) {
  const struct {
    const char* name;
    Fault (*fault)(FakeHost&);
    std::vector<int> states;  ///< that could be written
    std::size_t files;        ///< in the main table afterwards
  } rows[] = {{"held", HeldDatabase, {}, 1},
              {"full while saving", DiskThatSavingFills, {3, 4, 5, 2}, 0},
              {"full while printing", DiskThatIsFullBehindTheDocument, {3, 4, 5}, 1000},
              {"table", MissingTable, {3, 4, 2}, 0}};
  RecordStates();
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    for (const auto& file : fs::directory_iterator(tree.Path())) fs::remove(file);
    Make("one.norvikdoc");
    EXPECT_THAT(Run(1037), ElementsAre("7", "2"));
    Delivered();
    for (int i = 1; i < 1000; ++i) Make(std::string(200, 'n') + std::to_string(i) + ".norvikdoc");
    TestDatabase::Run("delete from STATES");
    {
      const Fault fault = row.fault(host);
      EXPECT_THAT(Run(1037), ElementsAre("7", "2"));
    }
    host.pipeline->beforeStep = nullptr;
    EXPECT_EQ(States(), row.states);
    EXPECT_THAT(RudDataSource::GetLastInventory(), SizeIs(row.files));
    EXPECT_THAT(NamesIn(host.Outbox()), IsEmpty());
    EXPECT_THAT(NamesIn(host.Work()), IsEmpty());
    EXPECT_THAT(Run(1037), ElementsAre("7", "2"));
    EXPECT_THAT(Delivered(), SizeIs(1000));
    EXPECT_EQ(RudDataSource::GetStatus(), V2::RudStatusFinished);
  }
}

TEST_F(FileInventoryTest, AFailedSaveStillBlocksTheDay) {
  TestDatabase::Run("drop table RUD2_FILE_PATH");
  EXPECT_THAT(Run(1037), ElementsAre("7", "2"));
  EXPECT_TRUE(host.log.Holds(2, "There was an error in RUD Inventory"));
  EXPECT_THAT(Run(1047), ElementsAre("3"));
}

TEST_F(FileInventoryTest, AnEmptyExtensionLeavesTheRunUnfinished) {
  host.dependencies->configuration.kob->includedExtensions = {""};
  module.emplace(host);
  EXPECT_THROW(Run(1037), std::out_of_range);
  EXPECT_EQ(RudDataSource::GetStatus(), V2::RudStatusScanning);
  host.communications->TakeStatuses();
  EXPECT_THAT(Request(1037), ElementsAre("7"));
  EXPECT_TRUE(host.log.Holds(3, "RUD is running, kindly wait until it finishes"));
}

TEST_F(FileInventoryTest, ARunThatDiedInAnyStateBeginsAgainAtTheNextStart) {
  Make("one.norvikdoc");
  for (const auto state : {V2::RudStatusScanning, V2::RudStatusSaving, V2::RudStatusPrinting}) {
    SCOPED_TRACE(state);
    EndOfLastTotal(std::chrono::hours(24));
    RudDataSource::SetStatus(state, 1, V2::DateBegin);
    DataBase::ClearTable("RUD2_LAST_INVENTORY");
    module.emplace(host);
    host.actions->Forget();
    Common::AgentConfigurationInfo configuration = host.dependencies->configuration;
    module->Run(32012, WithConfiguration(configuration));
    EXPECT_THAT(host.actions->Texts(), Contains("once 1047 +0"));
    host.actions->RunWaiting();
    EXPECT_THAT(host.communications->TakeStatuses(), ElementsAre("7", "2"));
    EXPECT_THAT(Delivered(), ElementsAre("-1 one"));
    EXPECT_EQ(RudDataSource::GetStatus(), V2::RudStatusFinished);
  }
}

}  // namespace
}  // namespace Norvik::KOB
