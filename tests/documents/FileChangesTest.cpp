#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <random>

#include "documents/ApplyIncrement.h"
#include "documents/Difference.h"
#include "documents/DocumentError.h"
#include "documents/Refusal.h"
#include "support/DocumentedLosses.h"

namespace Norvik::Documents {
namespace {

/// Keys in the order of the machine's own documents.
const Tests::Json DOCUMENTS = Tests::DataOf("documents/file-changes.json");

struct File {
  std::string folder;
  std::string name;
  std::string extension;  ///< as it is on the disk
  long long time;
  int size;
};
using Tree = std::vector<File>;

std::string Upper(std::string text) {
  for (char& letter : text) letter = static_cast<char>(std::toupper(letter));
  return text;
}

/// The total document of a tree, in runs of one folder.
std::string DocumentOf(const Tree& tree) {
  Json folders = Json::array();
  for (const auto& file : tree) {
    if (folders.empty() || folders.back()["pathName"] != file.folder) {
      folders.push_back({{"pathName", file.folder}});
    }
    Json record = {{"filename", file.name},
                   {"extension", Upper(file.extension)},
                   {"fileStatus", -1},
                   {"size", file.size}};
    if (file.time != 0) record["lastMod"] = file.time;
    folders.back()["files"].push_back(record);
  }
  const Json device = {{"assetDate", tree.size()}, {"guid", "g"}};
  return Json{{"device", device}, {"paths", folders}, {"typeInventory", 0}}.dump();
}

/// A disk whose files come, go, change, and change their extension's case.
class Disk {
 public:
  explicit Disk(unsigned int seed) : random_(seed) {}

  Tree Begin() {
    for (int i = 0; i < 30; ++i) Add();
    return Listed();
  }
  Tree GoOn() {
    std::map<std::string, File> before;
    before.swap(files_);
    for (auto& [path, file] : before) {
      if (Below(5) == 0) continue;
      if (Below(4) == 0) file.time = Below(4) * 1000 - 1000;
      if (Below(9) == 0) file.size = Below(100);
      if (Below(9) == 0) file.extension = Upper(file.extension);
      Put(file);
    }
    for (int i = Below(6); i > 0; --i) Add();
    return Listed();
  }

 private:
  int Below(int end) { return static_cast<int>(random_() % static_cast<unsigned>(end)); }
  void Put(const File& file) { files_[file.folder + file.name + file.extension] = file; }
  void Add() {
    static const char* const folders[] = {"/", "/a", "/a/b", "/a\"c", "/\xC3\xA9"};
    static const char* const extensions[] = {"app", "APP", "so"};
    Put({folders[Below(5)], std::to_string(Below(9)), extensions[Below(3)], Below(4) * 1000,
         Below(100)});
  }
  Tree Listed() {
    Tree tree;
    for (const auto& [path, file] : files_) tree.push_back(file);
    std::shuffle(tree.begin(), tree.end(), random_);
    return tree;
  }

  std::mt19937 random_;
  std::map<std::string, File> files_;
};

/// Files by what tells them.
std::map<std::string, std::vector<Json>> FilesOf(const Json& document) {
  std::map<std::string, std::vector<Json>> files;
  for (const Json& folder : document["paths"]) {
    for (const Json& file : folder["files"]) {
      const Json key = {folder["pathName"], file["filename"], file["extension"]};
      files[key.dump()].push_back(file);
    }
  }
  for (auto& [key, same] : files) std::sort(same.begin(), same.end());
  return files;
}

/// Why the files of one key differ; "?" if there is no reason.
std::string LossOf(const std::vector<Json>& before, const std::vector<Json>& wanted,
                   const std::vector<Json>& got) {
  if (wanted == got) return "";
  std::vector<long long> wantedTimes, gotTimes;
  for (const Json& file : wanted) wantedTimes.push_back(file.value("lastMod", 0LL));
  for (const Json& file : got) gotTimes.push_back(file.value("lastMod", 0LL));
  const bool timesAreTold =
      std::is_permutation(wantedTimes.begin(), wantedTimes.end(), gotTimes.begin(), gotTimes.end());
  return timesAreTold && got == before ? "a file that changed without its time" : "?";
}

TEST(FileChangesTest, AServerComesToWhatTheMachineHasButForTheKnownLosses) {
  std::set<std::string> losses;
  for (unsigned int seed = 0; seed < 300; ++seed) {
    Disk disk(seed);
    const std::string before = DocumentOf(disk.Begin());
    const std::string after = DocumentOf(disk.GoOn());
    const NamedText changes{"changes", DifferenceOf({"old", before}, {"new", after})};
    const Json merged = Json::parse(ApplyIncrement({"old", before}, changes));
    EXPECT_EQ(DifferenceOf({"same", merged.dump()}, {"same", merged.dump()}), "null");
    EXPECT_EQ(merged["device"], Json::parse(after)["device"]);
    if (merged["paths"] != Json::parse(after)["paths"]) losses.insert("the order of files");
    auto had = FilesOf(Json::parse(before));
    auto wanted = FilesOf(Json::parse(after));
    auto got = FilesOf(merged);
    for (auto* side : {&wanted, &got}) {
      for (const auto& [key, files] : *side) had[key];
    }
    for (const auto& [key, files] : had) {
      const std::string loss = LossOf(files, wanted[key], got[key]);
      ASSERT_NE(loss, "?") << "seed " << seed << ": " << key << changes.text;
      if (!loss.empty()) losses.insert(loss);
    }
  }
  EXPECT_EQ(losses, Tests::DocumentedLosses("file-inventory.md"));
}

TEST(FileChangesTest, ADifferenceHasTheFormOfTheMachineAndATotalDocumentComesOfIt) {
  const NamedText before{"old", DOCUMENTS["before"].dump()};
  const std::string difference = DifferenceOf(before, {"new", DOCUMENTS["after"].dump()});
  EXPECT_EQ(difference, DOCUMENTS["difference"].dump());
  EXPECT_EQ(ApplyIncrement(before, {"changes", difference}), DOCUMENTS["after"].dump());
  EXPECT_EQ(ApplyIncrement(before, {"none", "null"}), before.text);
}

TEST(FileChangesTest, DocumentsThatDoNotFitAreRefusedWithTheReason) {
  Tests::ExpectRefusals("documents/file-changes-refused.json", DOCUMENTS["before"],
                        DOCUMENTS["difference"]);
  EXPECT_THROW(DifferenceOf({"old", DOCUMENTS["before"].dump()}, {"new", "{}"}), DocumentError);
}

}  // namespace
}  // namespace Norvik::Documents
