#include "host/recording/Redaction.h"

#include <gmock/gmock.h>

#include "support/Cases.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace Norvik::Tests;
namespace fs = boost::filesystem;

/// A row: a file of a recording, its content, what may be nowhere afterwards and what must be.
TEST(Redaction, ReplacesEachKindOfValueInEachFormat) {
  for (const auto& row : DataOf("host/recording/redactions.json")) {
    const TemporaryFolder folder;
    const std::string file = row[1];
    for (const char* name : {"data", "root"}) fs::create_directory(folder / name);
    WriteFile(folder / file, row[2].get<Bytes>());
    EXPECT_GT(Norvik::Host::RedactRecording(folder.Path(), "") + (file == "location.json"), 0u);
    std::string contents;
    for (const auto& left : FilesBelow(folder.Path())) contents += left + ContentOf(folder / left);
    for (const auto& cell : row[3]) {
      EXPECT_THAT(contents, testing::Not(testing::HasSubstr(cell.get<Bytes>()))) << row[0];
    }
    for (const auto& cell : row[4]) {
      EXPECT_THAT(contents, testing::HasSubstr(cell.get<Bytes>())) << row[0];
    }
  }
}

}  // namespace
