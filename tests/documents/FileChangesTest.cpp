#include <boost/algorithm/string/replace.hpp>

#include "documents/Rows.h"

namespace Norvik::Documents {
namespace {

/// Keys in the order of the machine's own documents.
const Tests::Json DOCUMENTS = Tests::DataOf("documents/file-changes.json");

constexpr int DISKS = 27;

/// The total document of a disk with up to three files, two of which differ in the case of their
/// extension alone, so that only their times differ in a document. Each digit of the number in base
/// three is one file: absent, or with one of two times.
Json DocumentOf(int disk) {
  static const std::pair<const char*, const char*> files[] = {
      {"/a", "x"}, {"/\xC3\xA9\"c", "x"}, {"/a", "x"}};
  Json folders = Json::array();
  int digits = disk;
  for (const auto& [folder, name] : files) {
    const int time = digits % 3;
    digits /= 3;
    if (time == 0) continue;
    const Json file = {{"filename", name},
                       {"extension", "APP"},
                       {"fileStatus", -1},
                       {"lastMod", time},
                       {"size", time}};
    folders.push_back({{"pathName", folder}, {"files", {file}}});
  }
  return {
      {"device", {{"assetDate", disk}, {"guid", "g"}}}, {"paths", folders}, {"typeInventory", 0}};
}

std::multiset<std::string> FilesOf(const Json& document) {
  std::multiset<std::string> files;
  for (const Json& folder : document["paths"]) {
    for (const Json& file : folder["files"]) files.insert(folder["pathName"].dump() + file.dump());
  }
  return files;
}

TEST(FileChangesTest, AServerHasTheFilesOfTheMachine) {
  for (int before = 0; before < DISKS; ++before) {
    for (int after = 0; after < DISKS; ++after) {
      const NamedText old{"old", DocumentOf(before).dump()};
      const NamedText changes{"changes", DifferenceOf(old, {"new", DocumentOf(after).dump()})};
      const Json merged = Json::parse(ApplyIncrement(old, changes));
      EXPECT_EQ(FilesOf(merged), FilesOf(DocumentOf(after))) << before << " to " << after;
      // Where only the case of an extension differs, there is no change.
      EXPECT_EQ(merged["device"]["assetDate"], changes.text == "null" ? before : after);
    }
  }
}

TEST(FileChangesTest, TheGuideNamesTheChangesThatAreLost) {
  Tests::ExpectLosses("documents/file-losses.json", DOCUMENTS["full"], "file-inventory.md");
}

TEST(FileChangesTest, ADifferenceIsWrittenAsTheMachineDoesAndAppliesToATotalDocument) {
  // A machine writes names as they are on its disk, also those that a strict reader refuses.
  for (const std::string name : {"", "\xC0\xAF", "\xED\xA0\x80"}) {
    const auto textOf = [&](const char* document) {
      const std::string key = "\"filename\":\"";
      return boost::replace_all_copy(DOCUMENTS[document].dump(), key, key + name);
    };
    const NamedText before{"old", textOf("full")};
    const std::string difference = DifferenceOf(before, {"new", textOf("after")});
    EXPECT_EQ(difference, textOf("difference"));
    EXPECT_EQ(ApplyIncrement(before, {"changes", difference}), textOf("after"));
    EXPECT_EQ(ApplyIncrement(before, {"none", DifferenceOf(before, before)}), before.text);
  }
}

TEST(FileChangesTest, ChangesGiveTheirResultOrAreRefusedWithTheReason) {
  Tests::ExpectApplied("documents/applied-file-changes.json", DOCUMENTS["full"],
                       DOCUMENTS["difference"]);
  EXPECT_THROW(DifferenceOf({"old", DOCUMENTS["full"].dump()}, {"new", "{}"}), DocumentError);
}

}  // namespace
}  // namespace Norvik::Documents
