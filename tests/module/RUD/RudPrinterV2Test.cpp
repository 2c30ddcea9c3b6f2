#include "module/RUD/RudPrinterV2.h"

#include <soci/error.h>

#include <regex>

#include "common/identification/HostInfoProvider.h"
#include "module/RUD/ScannedFiles.h"
#include "support/FakeHost.h"
#include "support/FakeWaitClock.h"
#include "support/SchemaCheck.h"

namespace Norvik::KOB::V2 {
namespace {

using namespace Tests;

class RudPrinterTest : public testing::Test {
 protected:
  std::string Print(bool incremental) {
    const auto result = RudPrinter::GenerateJSON("guid \"1\"", incremental);
    EXPECT_EQ(result.extension(), ".jsonrud");
    EXPECT_THAT(NamesIn(host.Work()), ElementsAre(result.filename().string()));
    EXPECT_TRUE(Common::MoveToOutbox(fs::path(result), boost::none));
    return host.DeliveredDocument();
  }
  /// The document with 0 as the time of its creation.
  std::string PrintUndated(bool incremental) {
    const std::regex time("\"assetDate\":[0-9]{13}");
    return std::regex_replace(Print(incremental), time, "\"assetDate\":0");
  }
  FakeHost host;
};

TEST_F(RudPrinterTest, ATotalDocumentHoldsEveryFileInRunsOfItsFolder) {
  const RudFileDetails all = {"P", "1", "", "M", "it's"};
  const RudFileDetails blank = {"", "", "2", "", " "};
  const RudFileDetails versions = {"", "3", "2", "", ""};
  SaveScan({{"one", 0, 0, "/a"},
            {"it's \"two\"", -1, 0, "/a/h"},
            {"three", 3000, 0, "/a", all, true},
            {"four", 4000, 0, "/a", blank},
            {"five", 5000, 0, "/c", versions}},
           false);
  EXPECT_EQ(PrintUndated(false), DataOf("module/RUD/documents.json")["total"].dump());
}

TEST_F(RudPrinterTest, AnIncrementalDocumentHoldsNewThenRemovedThenModifiedFiles) {
  SaveScan({{"removed"}, {"modified"}, {"same"}}, false);
  SaveScan({{"modified", 2000}, {"same"}, {"new"}}, true);
  EXPECT_EQ(PrintUndated(true), DataOf("module/RUD/documents.json")["incremental"].dump());
}

TEST_F(RudPrinterTest, WithoutFilesOrTablesThereIsNoDocument) {
  for (const bool incremental : {false, true}) {
    EXPECT_EQ(RudPrinter::GenerateJSON("g", incremental), "");
  }
  SaveScan({{"one", 0, 0, "/a"}, {"two", 0, 0, "/b"}, {"three", 0, 0, "/c"}}, false);
  // The second row cannot be read, from either end.
  TestDatabase::Run("alter table RUD2_FILE_PATH rename to stored");
  TestDatabase::Run(
      "create view RUD2_FILE_PATH as select id, "
      "iif(path = '/b', abs(-9223372036854775807 - (id > 0)), path) as path from stored");
  EXPECT_EQ(RudPrinter::GenerateJSON("g", false), "");
  TestDatabase::Run("drop view RUD2_FILE_PATH");
  TestDatabase::Run("alter table stored rename to RUD2_FILE_PATH");
  TestDatabase::Run("update RUD2_LAST_INVENTORY set id_company_name=0");
  TestDatabase::Run("alter table RUD2_FILE_EXTENSION drop column extension");
  TestDatabase::Run("alter table RUD2_FILE_EXTENSION add column extension INTEGER");
  EXPECT_EQ(RudPrinter::GenerateJSON("g", false), "");
  TestDatabase::Run("drop table RUD2_FILE_COMPANY");
  EXPECT_EQ(RudPrinter::GenerateJSON("g", false), "");
  EXPECT_THAT(NamesIn(host.Work()), IsEmpty());
  EXPECT_THAT(host.log.Texts(2), ElementsAre(StartsWith("Error GetLastInventory: "),
                                             StartsWith("Creating JSOn of RUD - "),
                                             StartsWith("Error GetLastInventory: ")));
  EXPECT_THAT(host.log.Texts(3), AllOf(SizeIs(5), Each("RUD incremental empty. Without changes.")));
}

/// Throws from the place where the store logs its error.
struct Leak final : Common::Logger {
  void Log(Level level, const std::string& text, const char*, int, const char*) override {
    if (text.rfind("Error GetLastInventory", 0) == 0) throw soci::soci_error("held");
    if (level == LEVEL_ERROR) errors.push_back(text);
  }
  TextList errors;
};

TEST_F(RudPrinterTest, WaitsForTheDatabaseEverLongerAndForAFileWithoutEnd) {
  FakeWaitClock clock;
  SaveScan({{"one"}}, false);
  const auto base = host.Work() / (Common::HostInfoProvider::GetHostName() + ".rud");
  host.pipeline->beforeStep = [&](const std::string& step) {
    if (step != "encrypt") return;
    fs::remove(base);
    fs::create_directories(base / "busy");
  };
  clock.meanwhile = [&](std::size_t wait) {
    if (wait == 60) fs::remove(base / "busy");
  };
  Print(false);
  EXPECT_THAT(clock.waits, AllOf(SizeIs(60), Each(seconds(5))));
  EXPECT_EQ(host.log.Texts(3).back(), "Try [61]. Success. Remove file " + base.string());

  clock.waits.clear();
  TestDatabase::Run("drop table RUD2_FILE_COMPANY");
  const LogCapture restored;
  const auto leak = std::make_shared<Leak>();
  Common::Logger::SetInstance(leak);
  EXPECT_EQ(RudPrinter::GenerateJSON("g", false), "");
  EXPECT_THAT(clock.waits, AllOf(SizeIs(50), Contains(seconds(500)), Contains(seconds(25000))));
  EXPECT_THAT(leak->errors, ElementsAre("Creating JSOn of RUD - held"));
}

TEST_F(RudPrinterTest, AFailedStepLeavesNoReadableFileAndIsLoggedOnly) {
  SaveScan({{"one"}}, false);
  for (const char* step : {"compress", "encrypt"}) {
    host.pipeline->failingStep = step;
    EXPECT_EQ(RudPrinter::GenerateJSON("g", false).extension(), ".jsonrud") << step;
    EXPECT_THAT(NamesIn(host.Work()), IsEmpty()) << step;
  }
  host.pipeline->failingStep.clear();
  {
    const FullDisk full(10);
    RudPrinter::GenerateJSON("g", false);
  }
  EXPECT_THAT(NamesIn(host.Work()), IsEmpty());
}

using Lines = std::set<std::string>;
constexpr char SCHEMA[] = "file-inventory";

class FileSchemaTest : public RudPrinterTest {
 protected:
  static ScannedFile Detailed(const std::string& name, const std::string& text) {
    return {name, 1000, 0, "/it's", RudFileDetails{text, text, text, text, text}, true};
  }
  std::string Total() {
    SaveScan({Detailed("all", "text"), Detailed("blank", " "), {"plain", 0}, {"odd", -1}}, false);
    return Print(false);
  }

  SchemaCheck check;
};

TEST_F(FileSchemaTest, AllowsWhatThePrinterMakesAndHasNoPropertyThatOccursInNone) {
  check.Add(SCHEMA, "total", Total());
  SaveScan({Detailed("new", "text"), {"plain"}, {"odd", -1}}, true);
  check.Add(SCHEMA, "incremental", Print(true));
  EXPECT_EQ(check.Problems("--cover --annotations"), Lines());
}

TEST_F(FileSchemaTest, RefusesWhatNoDocumentMayHold) {
  const PlainJson total = PlainJson::parse(Total());
  const PlainJson rows = DataOf("module/RUD/refusals.json");
  for (const auto& row : rows) {
    PlainJson document = total;
    document[PlainJson::json_pointer(row[1])] = row[2];
    check.Add(SCHEMA, row[0], document.dump());
  }
  const Lines problems = check.Problems();
  for (const auto& row : rows) {
    const std::string expected =
        SCHEMA + ("/" + row[0].get<std::string>()) + row[3].get<std::string>();
    const auto found = problems.lower_bound(expected);
    EXPECT_TRUE(found != problems.end() && found->rfind(expected, 0) == 0) << expected;
  }
}

/// Every key is required, except those that only some files have.
TEST_F(FileSchemaTest, RefusesAnObjectWithoutOneOfItsKeys) {
  const PlainJson total = PlainJson::parse(Total());
  Lines expected;
  for (const std::string place : {"", "/device", "/paths/0", "/paths/0/files/0"}) {
    for (const auto& [key, value] : total[PlainJson::json_pointer(place)].items()) {
      if (key == "detail" || key == "executable" || key == "lastMod") continue;
      PlainJson document = total;
      document[PlainJson::json_pointer(place)].erase(key);
      check.Add(SCHEMA, key, document.dump());
      expected.insert(std::string(SCHEMA) + "/" + key + "#" + place + ": '" + key +
                      "' is a required property");
    }
  }
  EXPECT_EQ(check.Problems(), expected);
}

}  // namespace
}  // namespace Norvik::KOB::V2
