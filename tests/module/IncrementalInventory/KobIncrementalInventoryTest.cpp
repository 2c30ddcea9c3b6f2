#include "module/IncrementalInventory/KobIncrementalInventory.h"

#include <boost/property_tree/ptree.hpp>

#include "module/IncrementalInventory/Entities/IncrementalInventoryKOBInfo.h"
#include "module/Inventories.h"

namespace Norvik::KOB {
namespace {

using namespace tests;
using MemorySlots = std::list<Common::SmbMemoryDeviceInfo>;

/// Features from words such as "a1": version "a", name "1".
template <class Features>
Features FeaturesOf(const std::string& words) {
  Features features;
  std::istringstream stream(words);
  for (std::string word; stream >> word;) {
    auto& feature = features.emplace_back();
    feature.version = word.substr(0, 1);
    feature.name = word.substr(1);
  }
  return features;
}

template <class Features>
std::string WordsOf(const Features& features) {
  std::string words;
  for (const auto& feature : features) {
    words += (words.empty() ? "" : " ") + feature.version + feature.name;
  }
  return words;
}

template <class Deleted>
std::string VersionsOfDeleted(const Deleted& deleted) {
  std::string words;
  for (const auto& it : deleted) {
    words +=
        (words.empty() ? "" : " ") + ParseJson(JsonText(it)).template get<std::string>("version");
  }
  return words;
}

/// What was created, updated and deleted between two lists. Expects that the lists stay unchanged.
template <template <class...> class Container>
std::vector<std::string> Compared(const std::string& before, const std::string& now) {
  using Features = Container<FeaturesInfo>;
  Features created, updated;
  Container<FeaturesDeletedInfo> deleted;
  auto previous = FeaturesOf<Features>(before);
  auto current = FeaturesOf<Features>(now);
  KobIncrementalInventory::GetItems(created, deleted, updated, previous, current);
  EXPECT_EQ(WordsOf(previous), before);
  EXPECT_EQ(WordsOf(current), now);
  return {WordsOf(created), WordsOf(updated), VersionsOfDeleted(deleted)};
}

TEST(GetItemsTest, ListsAndVectorsAreComparedByTheFirstRecordOfAKey) {
  const Tests::Json& rows = Tests::DataOf("module/IncrementalInventory/comparisons.json");
  Tests::ExpectRows(rows, Compared<std::list>);
  Tests::ExpectRows(rows, Compared<std::vector>);
}

class KobIncrementalInventoryTest : public testing::Test {
 protected:
  const std::unique_ptr<InventoryKOBInfo>& Compare() {
    result = KobIncrementalInventory(std::make_unique<InventoryKOBInfo>(previous),
                                     std::make_unique<InventoryKOBInfo>(current))
                 .GenerateIncrementalInventoryKOB();
    return result;
  }
  std::string Document() { return JsonText(*Compare()); }
  const IncrementalInventoryKOBInfo& Changes() {
    return dynamic_cast<const IncrementalInventoryKOBInfo&>(*Compare());
  }
  const ScopedLocale utf8{"C.UTF-8"};
  InventoryKOBInfo previous;
  InventoryKOBInfo current;
  std::unique_ptr<InventoryKOBInfo> result;  ///< of the last comparison; owned by its base
};

TEST_F(KobIncrementalInventoryTest,
       AnInventoryAndItsStoredDocumentGiveNullThoughTheDeviceIsCopied) {
  current = FilledInventory();
  previous = ReadBack<InventoryKOBInfo>(JsonText(current));
  current.device.name = "mac-08";
  EXPECT_TRUE(json::JSON(*Compare()).IsNull());
  EXPECT_EQ(result->device.name, "mac-08");
}

TEST_F(KobIncrementalInventoryTest, AMemoryModuleThatWasAddedOrRemovedIsKeptButNotWritten) {
  current.memorySlots.resize(1);
  EXPECT_EQ(Document(), "null");
  EXPECT_EQ(Changes().memorySlots.size(), 1u);
  std::swap(previous, current);
  EXPECT_EQ(Document(), "null");
  EXPECT_EQ(Changes().Deleted<MemorySlots>().size(), 1u);
}

}  // namespace
}  // namespace Norvik::KOB
