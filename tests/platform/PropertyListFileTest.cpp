#include "platform/PropertyListFile.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "support/Files.h"
#include "support/PropertyListText.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace Norvik::Tests;
using namespace Norvik::Platform;

TEST(PropertyListFile, AWrongTypeAndAMissingKeyAreEmpty) {
  const TemporaryFolder files;
  WriteFile(files / "daemon.plist", PropertyListOf(R"({"Label": "com.example.a",
      "None": [], "Words": ["/bin/a", "-x"], "Numbers": [4], "Off": false})"));
  WriteFile(files / "array.plist", PropertyListOf(R"(["Label"])"));
  const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
      {"daemon.plist", "Label", "com.example.a", ""},
      {"daemon.plist", "Words", "", "/bin/a"},
      {"daemon.plist", "Numbers", "", ""},
      {"daemon.plist", "None", "", ""},
      {"daemon.plist", "Off", "", ""},
      {"daemon.plist", "On", "", ""},
      {"array.plist", "Label", "", ""},
      {"absent.plist", "Label", "", ""},
      {".", "Label", "", ""}};
  for (const auto& [name, key, text, firstText] : cases) {
    const PropertyListFile file((files / name).string());
    EXPECT_EQ(file.Text(key), text) << name << key;
    EXPECT_EQ(file.FirstText(key), firstText) << name << key;
    EXPECT_EQ(file.Has(key), name == std::string("daemon.plist") && key != std::string("On"))
        << key;
  }
}

}  // namespace
