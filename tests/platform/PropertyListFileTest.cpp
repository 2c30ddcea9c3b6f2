#include "platform/PropertyListFile.h"

#include "support/Files.h"
#include "support/PropertyListText.h"
#include "support/Test.h"

namespace {

using namespace Norvik::Tests;
using namespace Norvik::Platform;

TEST(PropertyListFile, AWrongTypeAndAMissingKeyAreEmpty) {
  const TemporaryFolder files;
  WriteFile(files / "daemon.plist", PropertyListOf(R"({"Label": "com.example.a", "None": [],
      "Words": ["/bin/a", "-x"], "Numbers": [4], "Off": false})"));
  WriteFile(files / "array.plist", PropertyListOf(R"(["Label"])"));
  for (const Json& row : DataOf("platform/property-list-files.json")) {
    const PropertyListFile file((files / row[0].get<std::string>()).string());
    const std::string key = row[1];
    EXPECT_EQ(Json({file.Text(key), file.FirstText(key), file.Has(key)}), row[2]) << row;
  }
}

}  // namespace
