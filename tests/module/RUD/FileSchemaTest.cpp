#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <utility>

#include "documents/ApplyIncrement.h"
#include "module/RUD/Data/RudDataSourceV2.h"
#include "module/RUD/RudPrinterV2.h"
#include "support/FakeHost.h"
#include "support/SchemaCheck.h"

namespace Norvik::KOB::V2 {
namespace {

using namespace Tests;
using Json = nlohmann::json;
using Lines = std::set<std::string>;

constexpr char SCHEMA[] = "file-inventory";

class FileSchemaTest : public testing::Test {
 protected:
  static RudFileInfo File(const std::string& name, long long time) {
    RudFileInfo file;
    file.fileName = name;
    file.lastModification = time;
    return file;
  }
  static RudFileInfo Detailed(const std::string& name, const std::string& text) {
    RudFileInfo file = File(name, 1000);
    file.details.Make() = {text, text, text, text, text};
    file.isExecutable = true;
    return file;
  }
  static void Save(const std::vector<RudFileInfo>& files, bool incremental) {
    RudBuffer buffer(1);
    const auto extension = buffer.AddExtension("APP");
    for (RudFileInfo file : files) {
      file.extensionId = extension;
      file.pathId = buffer.AddParentPath("/it's");
      file.companyId = buffer.AddCompanyName(file.details.Get().companyName);
      if (file.absolutePath.empty()) file.absolutePath = "/it's/" + file.fileName + ".app";
      buffer.Insert(file);
    }
    RudDataSource::SaveBuffer(buffer, incremental);
  }
  std::string Print(bool incremental) {
    auto result = RudPrinter::GenerateJSON("guid", incremental);
    EXPECT_TRUE(Common::MoveToOutbox(std::move(result), boost::none));
    return host.DeliveredDocument();
  }
  std::string Total() {
    Save({Detailed("all", "text"), Detailed("blank", " "), File("plain", 0), File("odd", -1)},
         false);
    return Print(false);
  }

  FakeHost host;
  SchemaCheck check;
};

TEST_F(FileSchemaTest, AllowsWhatThePrinterMakesAndHasNoPropertyThatOccursInNone) {
  check.Add(SCHEMA, "total", Total());
  Save({Detailed("new", "text"), File("plain", 1000), File("odd", -1)}, true);
  check.Add(SCHEMA, "incremental", Print(true));
  EXPECT_EQ(check.Problems({"--cover", "--annotations"}), Lines());
}

TEST_F(FileSchemaTest, AServerComesToWhatTheMachineHasByWhatItSends) {
  RudFileInfo renamed = File("in-case", 1000);
  Save({File("changed", -1), File("gone", 0), renamed, Detailed("kept", "text")}, false);
  const std::string total = Print(false);
  renamed.absolutePath = "/it's/in-case.APP";
  const std::vector<RudFileInfo> now = {File("added", 0), Detailed("changed", "new"), renamed,
                                        Detailed("kept", "text")};
  Save(now, true);
  const std::string changes = Print(true);
  Save(now, false);
  const Json merged =
      Json::parse(Documents::ApplyIncrement({"total", total}, {"changes", changes}));
  EXPECT_EQ(merged["paths"], Json::parse(Print(false))["paths"]);
  EXPECT_EQ(merged["device"], Json::parse(changes)["device"]);
}

struct Row {
  const char* name;
  const char* place;
  const char* value;
  const char* problem;
};

const Row ROWS[] = {
    {"key", "/novelty", "1", "#: Additional properties are not allowed ('novelty' was unexpected)"},
    {"key-of-device", "/device/novelty", "1", "#/device: Additional properties are not allowed"},
    {"key-of-folder", "/paths/0/novelty", "1", "#/paths/0: Additional properties are not allowed"},
    {"key-of-file", "/paths/0/files/0/novelty", "1",
     "#/paths/0/files/0: Additional properties are not allowed"},
    {"key-of-detail", "/paths/0/files/0/detail/novelty", "1",
     "#/paths/0/files/0/detail: Additional properties are not allowed"},
    {"type", "/typeInventory", "2", "#/typeInventory: 2 is not one of [0, 1]"},
    {"state", "/paths/0/files/0/fileStatus", "1", "#/paths/0/files/0/fileStatus: -1 was expected"},
    {"state-of-change", "/typeInventory", "1",
     "#/paths/0/files/0/fileStatus: -1 is less than the minimum of 1"},
    {"no-files", "/paths/0/files", "[]", "#/paths/0/files: [] "},
    {"no-detail", "/paths/0/files/0/detail", "{}", "#/paths/0/files/0/detail: {} "},
    {"no-program", "/paths/0/files/0/executable", "false",
     "#/paths/0/files/0/executable: True was expected"},
    {"no-time", "/paths/0/files/0/lastMod", "0", "#/paths/0/files/0/lastMod: "},
    {"time-as-text", "/device/assetDate", "\"1\"",
     "#/device/assetDate: '1' is not of type 'integer'"},
    {"size", "/paths/0/files/0/size", "0.5",
     "#/paths/0/files/0/size: 0.5 is not of type 'integer'"},
};

TEST_F(FileSchemaTest, RefusesWhatNoDocumentMaySay) {
  const Json total = Json::parse(Total());
  for (const auto& row : ROWS) {
    Json document = total;
    document[Json::json_pointer(row.place)] = Json::parse(row.value);
    check.Add(SCHEMA, row.name, document.dump());
  }
  const Lines problems = check.Problems();
  for (const auto& row : ROWS) {
    const std::string expected = std::string(SCHEMA) + "/" + row.name + row.problem;
    const auto found = problems.lower_bound(expected);
    EXPECT_TRUE(found != problems.end() && found->rfind(expected, 0) == 0) << expected;
  }
}

/// Every key but those that stand only for some files is in each object.
TEST_F(FileSchemaTest, RefusesAnObjectWithoutOneOfItsKeys) {
  const Json total = Json::parse(Total());
  Lines expected;
  for (const std::string place : {"", "/device", "/paths/0", "/paths/0/files/0"}) {
    for (const auto& [key, value] : total[Json::json_pointer(place)].items()) {
      if (key == "detail" || key == "executable" || key == "lastMod") continue;
      Json document = total;
      document[Json::json_pointer(place)].erase(key);
      check.Add(SCHEMA, key, document.dump());
      expected.insert(std::string(SCHEMA) + "/" + key + "#" + place + ": '" + key +
                      "' is a required property");
    }
  }
  EXPECT_EQ(check.Problems(), expected);
}

}  // namespace
}  // namespace Norvik::KOB::V2
