#include "machine/linux/GatherFromFiles.h"

#include "common/identification/SmBios.h"
#include "machine/FirstInventory.h"
#include "support/RecordJson.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Machine;
using namespace Norvik::Tests;

class SystemOf {
 public:
  explicit SystemOf(const Json& row) {
    for (const auto& [path, content] : PartOf(row, "files").items()) {
      WriteFile(Place(path), content.get<Bytes>());
    }
    for (const auto& [path, target] : PartOf(row, "links").items()) {
      fs::create_symlink(target.get<std::string>(), Place(path));
    }
  }
  const SystemFiles& Files() const { return files_; }

 private:
  fs::path Place(const std::string& path) const {
    const fs::path place = folder_ / fs::path(path).relative_path();
    fs::create_directories(place.parent_path());
    return place;
  }
  TemporaryFolder folder_;
  const SystemFiles files_{folder_.Path()};
};

Json CompletedSetup(const SystemFiles& files) {
  SetupInfo setup;
  setup.system.manufacturer = "Known";
  CompleteSetup(files, setup);
  return JsonOf(setup);
}

const std::map<std::string, Json (*)(const SystemFiles&)> GATHERED = {
    {"adapters", [](const SystemFiles& files) { return JsonOf(GatherAdapters(files)); }},
    {"disks", [](const SystemFiles& files) { return JsonOf(GatherDisks(files)); }},
    {"domain", [](const SystemFiles& files) { return Json(GatherDomain(files)); }},
    {"memory", [](const SystemFiles& files) { return JsonOf(GatherMemory(files)); }},
    {"operatingSystem",
     [](const SystemFiles& files) { return JsonOf(GatherOperatingSystem(files)); }},
    {"processors", [](const SystemFiles& files) { return JsonOf(GatherProcessors(files)); }},
    {"setup", CompletedSetup},
};

TEST(GatherLinux, FindsTheFactsOfASystemInItsFiles) {
  for (const Json& row : DataOf("machine/linux-systems.json")) {
    const SystemOf system(row);
    for (const auto& [facts, wanted] : row["expected"].items()) {
      const Json found = GATHERED.at(facts)(system.Files());
      EXPECT_EQ(Shown(Chosen(found, wanted)), Shown(wanted)) << row["name"] << ": " << facts;
    }
  }
}

TEST(GatherLinux, AVolumeHasTheSizesOfItsPlace) {
  const SystemOf system(DataOf("machine/linux-systems.json")[0]);
  const LogicalDiskInfo root = GatherDisks(system.Files()).at(0).logicalDisks.front();
  EXPECT_GT(root.sizeBytes, 0u);
  EXPECT_EQ(root.freeBytes % (1ull << 30), 0u);
}

TEST(FirstInventory, IsTheSameTwiceOnAnUnchangedMachine) {
  const auto smBios = ReadSmBios();
  ASSERT_TRUE(smBios);
  const auto first = GatherFirstInventory(*smBios);
  const auto second = GatherFirstInventory(*smBios);
  EXPECT_FALSE(first.memory != second.memory);
  EXPECT_FALSE(first.setup != second.setup);
  EXPECT_FALSE(first.operatingSystem != second.operatingSystem);
  EXPECT_EQ(first.networkAdapters, second.networkAdapters);
  EXPECT_EQ(first.physicalDisks, second.physicalDisks);
  EXPECT_EQ(first.processors, second.processors);
  EXPECT_GT(first.memory.totalBytes, 0u);
  EXPECT_FALSE(first.processors.empty());
  EXPECT_EQ(first.operatingSystemType, first.operatingSystem.family);
}

}  // namespace
