

#include "module/RUD/RudPrinterV2.h"
#include "module/RUD/ScannedFiles.h"
#include "support/FakeHost.h"
#include "support/SchemaCheck.h"

namespace Norvik::KOB::V2 {
namespace {

using namespace Tests;
using Lines = std::set<std::string>;

constexpr char SCHEMA[] = "file-inventory";

class FileSchemaTest : public testing::Test {
 protected:
  static ScannedFile Detailed(const std::string& name, const std::string& text) {
    return {name, 1000, 0, "/it's", RudFileDetails{text, text, text, text, text}, true};
  }
  std::string Print(bool incremental) {
    auto result = RudPrinter::GenerateJSON("guid", incremental);
    EXPECT_TRUE(Common::MoveToOutbox(std::move(result), boost::none));
    return host.DeliveredDocument();
  }
  std::string Total() {
    SaveScan({Detailed("all", "text"), Detailed("blank", " "), {"plain", 0}, {"odd", -1}}, false);
    return Print(false);
  }

  FakeHost host;
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
