#include "module/RUD/RudPrinterV2.h"

#include <gmock/gmock.h>

#include <regex>

#include "module/RUD/ScannedFiles.h"
#include "support/FakeHost.h"
#include "support/Files.h"
#include "support/FullDisk.h"

namespace Norvik::KOB::V2 {
namespace {

using namespace Tests;
using namespace testing;

class RudPrinterTest : public testing::Test {
 protected:
  /// The document, with 0 for the time of its making.
  std::string Print(bool incremental) {
    const auto result = RudPrinter::GenerateJSON("guid \"1\"", incremental);
    EXPECT_EQ(result.extension(), ".jsonrud");
    EXPECT_THAT(NamesIn(host.Work()), ElementsAre(result.filename().string()));
    EXPECT_TRUE(Common::MoveToOutbox(boost::filesystem::path(result), boost::none));
    return std::regex_replace(host.DeliveredDocument(), std::regex("\"assetDate\":[0-9]{13}"),
                              "\"assetDate\":0");
  }
  FakeHost host;
};

TEST_F(RudPrinterTest, ATotalDocumentHoldsEveryFileInRunsOfItsFolder) {
  const RudFileDetails all = {"P", "1", "", "M", "D"};
  const RudFileDetails blank = {"", "", "2", "", " "};
  const RudFileDetails versions = {"", "3", "2", "", ""};
  SaveScan({{"one", 0, 0, "/a"},
            {"it's \"two\"", -1, 0, "/a/h"},
            {"three", 3000, 0, "/a", all, true},
            {"four", 4000, 0, "/a", blank},
            {"five", 5000, 0, "/c", versions}},
           false);
  EXPECT_EQ(Print(false),
            R"({"device":{"assetDate":0,"guid":"guid \"1\""},"paths":[)"
            R"({"files":[{"detail":{"fileVersion":""},"extension":"EXE","fileStatus":-1,)"
            R"("filename":"four","lastMod":4000,"size":0}],"pathName":"/a"},)"
            R"({"files":[{"extension":"EXE","fileStatus":-1,"filename":"it s \"two\"",)"
            R"("lastMod":-1,"size":0}],"pathName":"/a/h"},)"
            R"({"files":[{"extension":"EXE","fileStatus":-1,"filename":"one","size":0},)"
            R"({"detail":{"description":"D","manufacturer":"M","name":"P","productVersion":"1"},)"
            R"("executable":true,"extension":"EXE","fileStatus":-1,"filename":"three",)"
            R"("lastMod":3000,"size":0}],"pathName":"/a"},)"
            R"({"files":[{"detail":{"fileVersion":"3","productVersion":"3"},"extension":"EXE",)"
            R"("fileStatus":-1,"filename":"five","lastMod":5000,"size":0}],"pathName":"/c"}],)"
            R"("typeInventory":0})");
}

TEST_F(RudPrinterTest, AnIncrementalDocumentHoldsNewThenRemovedThenModifiedFiles) {
  SaveScan({{"removed"}, {"modified"}, {"same"}}, false);
  SaveScan({{"modified", 2000}, {"same"}, {"new"}}, true);
  const auto file = [](const std::string& status, const std::string& name,
                       const std::string& time) {
    return R"({"files":[{"extension":"EXE","fileStatus":)" + status + R"(,"filename":")" + name +
           R"(","lastMod":)" + time + R"(,"size":0}],"pathName":"/it s"})";
  };
  EXPECT_EQ(Print(true), R"({"device":{"assetDate":0,"guid":"guid \"1\""},"paths":[)" +
                             file("1", "new", "1000") + "," + file("3", "removed", "1000") + "," +
                             file("2", "modified", "2000") + R"(],"typeInventory":1})");
}

TEST_F(RudPrinterTest, WithoutFilesOrTablesThereIsNoDocument) {
  for (const bool incremental : {false, true}) {
    EXPECT_EQ(RudPrinter::GenerateJSON("g", incremental), "");
  }
  SaveScan({{"one"}}, false);
  TestDatabase::Run("update RUD2_LAST_INVENTORY set id_company_name=0");
  TestDatabase::Run("drop table RUD2_FILE_COMPANY");
  EXPECT_EQ(RudPrinter::GenerateJSON("g", false), "");
  EXPECT_THAT(NamesIn(host.Work()), IsEmpty());
  EXPECT_THAT(host.log.Texts(3), ElementsAre("RUD incremental empty. Without changes.",
                                             "RUD incremental empty. Without changes.",
                                             "RUD incremental empty. Without changes."));
}

TEST_F(RudPrinterTest, AFailedStepLeavesNoReadableFileAndIsNotAnswered) {
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

}  // namespace
}  // namespace Norvik::KOB::V2
