#include "documents/ApplyIncrement.h"

#include <random>

#include "documents/MachineSections.h"
#include "documents/Rows.h"
#include "module/Inventories.h"

namespace Norvik::Documents {
namespace {

using namespace KOB;
using namespace tests;

/// Random inventories of a machine over time: records are added, removed, changed and moved, and
/// some share an identity.
class History {
 public:
  explicit History(unsigned int seed) : random_(seed) {}

  InventoryKOBInfo First() {
    InventoryKOBInfo inventory;
    ForEachSection([&](const auto& section) { Fill(section, inventory); });
    inventory.device.guid = "guid";
    return inventory;
  }
  InventoryKOBInfo Next(InventoryKOBInfo inventory) {
    ForEachSection([&](const auto& section) {
      if (!Chance(4)) Change(section, inventory);
    });
    inventory.device.guid = "guid";
    return inventory;
  }

 private:
  bool Chance(int outOf) { return random_() % static_cast<unsigned>(outOf) == 0; }
  int Number(int below) { return static_cast<int>(random_() % static_cast<unsigned>(below)); }

  template <class Section>
  void Fill(const Section& section, InventoryKOBInfo& inventory) {
    auto& value = section.In(inventory);
    if constexpr (Section::isList) {
      const int records = Number(5);
      for (int i = 0; i < records; ++i) Add(value, i);
    } else if constexpr (Section::kind == SectionKind::Location) {
      value.latitude = Number(90'000'000) / 1e6;
      value.longitude = Number(9'000'000) / 1e6;
    } else {
      Filler(Number(4) * 100).Fill(value);
    }
  }
  template <class Section>
  void Change(const Section& section, InventoryKOBInfo& inventory) {
    auto& value = section.In(inventory);
    if constexpr (Section::kind == SectionKind::Location) {
      if (Chance(3)) value = {};
      value.longitude += Number(30) / 1e6;
    } else if constexpr (Section::isList) {
      ChangeList(value);
    } else {
      Fill(section, inventory);
    }
  }
  template <class List>
  void ChangeList(List& records) {
    using Record = typename List::value_type;
    List result;
    for (const auto& record : records) {
      if (Chance(4)) continue;
      result.push_back(Chance(3) ? ChangedOutsideKey(record) : record);
    }
    if (Chance(2)) Add(result, 5 + Number(3));
    if (Chance(20) && !result.empty()) result.push_back(ChangedOutsideKey(result.front()));
    if (Chance(20)) result.insert(result.end(), {Record(), ChangedOutsideKey(Record())});
    if (Chance(8) && !result.empty()) std::rotate(result.begin(), ++result.begin(), result.end());
    records = std::move(result);
  }
  template <class List>
  void Add(List& records, int number) {
    records.push_back(Numbered<typename List::value_type>(number + 1));
    SetId(records.back());
  }
  void SetId(NetworkDriveInfo& drive) { drive.id = random_(); }
  template <class Record>
  void SetId(Record& /*hasNone*/) {}

  std::mt19937 random_;
};

/// Two inventories of a machine, and what a server has after the changes between them.
struct Exchange {
  Json before;
  Json after;   ///< on the machine
  Json merged;  ///< on the server
  bool sent;
};

std::vector<std::string> Sorted(const Json& records) {
  std::vector<std::string> texts;
  for (const Json& record : records) texts.push_back(record.dump());
  std::sort(texts.begin(), texts.end());
  return texts;
}

std::string IdentityOf(const MachineSection& section, const Json& record) {
  std::string identity;
  for (const auto& key : section.identity) identity += record[key].dump() + " ";
  return identity;
}
bool IsEmpty(const std::string& identity) {
  return identity.find_first_not_of("\"0 ") == std::string::npos;
}

std::set<std::string> Identities(const MachineSection& section, const Json& records) {
  std::set<std::string> identities;
  for (const Json& record : records) identities.insert(IdentityOf(section, record));
  return identities;
}

/// Identities that several records of one of the inventories share.
std::set<std::string> SharedIdentities(const MachineSection& section, const Exchange& exchange) {
  std::set<std::string> shared;
  for (const Json* document : {&exchange.before, &exchange.after}) {
    std::set<std::string> seen;
    for (const Json& record : (*document)[section.key]) {
      const std::string identity = IdentityOf(section, record);
      if (!seen.insert(identity).second) shared.insert(identity);
    }
  }
  return shared;
}

Json Without(const std::set<std::string>& identities, const MachineSection& section,
             const Json& records) {
  Json others = Json::array();
  for (const Json& record : records) {
    if (!identities.count(IdentityOf(section, record))) others.push_back(record);
  }
  return others;
}

bool IsNear(const Json& left, const Json& right) {
  return std::abs(left.get<double>() - right.get<double>()) < 2 * GeoLocationPoint::tolerance;
}

/// The documented loss by which the two sides differ in a section: empty if they are equal, "?" if
/// no loss explains the difference.
std::string LossIn(const MachineSection& section, const Exchange& exchange) {
  const Json& wanted = exchange.after[section.key];
  const Json& got = exchange.merged[section.key];
  if (wanted == got) return "";
  if (section.kind == SectionKind::Device)
    return exchange.sent ? "?" : "a device that changed alone";
  if (section.kind == SectionKind::Location) {
    const bool near = !wanted.is_null() && !got.is_null() &&
                      IsNear(wanted["longitude"], got["longitude"]) &&
                      IsNear(wanted["latitude"], got["latitude"]);
    return near ? "a location beyond its six digits" : "?";
  }
  if (!section.IsList()) return "?";
  if (Sorted(wanted) == Sorted(got)) return "the order of records";
  if (section.kind == SectionKind::ListOfUpdates) {
    const bool sameSlots = Identities(section, wanted) == Identities(section, got);
    if (!sameSlots) return "a memory slot that was added or removed";
  }
  const auto shared = SharedIdentities(section, exchange);
  const bool othersAreEqual =
      Sorted(Without(shared, section, wanted)) == Sorted(Without(shared, section, got));
  if (shared.empty() || !othersAreEqual) return "?";
  return IsEmpty(*shared.begin()) ? "records without identity" : "records that share an identity";
}

bool IdsAreLost(const InventoryKOBInfo& after, const Json& merged) {
  const auto stored = ReadBack<InventoryKOBInfo>(merged.dump());
  return std::any_of(stored.networkDrives.begin(), stored.networkDrives.end(), [&](auto& drive) {
    return std::none_of(after.networkDrives.begin(), after.networkDrives.end(),
                        [&](auto& own) { return own.id == drive.id; });
  });
}

class ApplyIncrementTest : public testing::Test {
  const ScopedLocale utf8_{"C.UTF-8"};
  const Tests::LogCapture log_;
};

TEST_F(ApplyIncrementTest, AServerHasWhatTheMachineHasExceptForTheDocumentedLosses) {
  std::set<std::string> losses;
  int identical = 0;
  for (unsigned int seed = 0; seed < 100; ++seed) {
    History history(seed);
    const InventoryKOBInfo before = history.First();
    const InventoryKOBInfo after = history.Next(before);
    const NamedText old{"old", JsonText(before)};
    const NamedText present{"new", JsonText(after)};
    const std::string changes = DifferenceOf(old, present);
    const std::string merged = ApplyIncrement(old, {"changes", changes});
    const Exchange exchange{Json::parse(old.text), Json::parse(present.text), Json::parse(merged),
                            changes != "null"};
    std::set<std::string> lost;
    for (const MachineSection& section : MachineSections()) {
      const std::string loss = LossIn(section, exchange);
      ASSERT_NE(loss, "?") << "seed " << seed << ": " << section.key << "\n"
                           << exchange.after[section.key] << "\n"
                           << exchange.merged[section.key];
      if (!loss.empty()) lost.insert(loss);
    }
    if (lost.empty()) {
      EXPECT_EQ(merged, present.text);
      ++identical;
    }
    losses.merge(lost);
    if (IdsAreLost(after, exchange.merged)) losses.insert("the id of a network drive");
  }
  // A device alone changes too rarely by chance.
  InventoryKOBInfo named;
  named.device.name = "new";
  const std::string changes =
      DifferenceOf({"old", JsonText(InventoryKOBInfo())}, {"new", JsonText(named)});
  if (changes == "null") losses.insert("a device that changed alone");

  EXPECT_EQ(losses, Tests::DocumentedLosses("documents.md"));
  EXPECT_GT(identical, 0);
}

TEST_F(ApplyIncrementTest, TheResultIsTheTextOfAnAgentWithItsFractionsAndIrregularBytes) {
  InventoryKOBInfo inventory = FilledInventory();
  inventory.location.height = 1234567;
  inventory.networkDrives.front().path = "caf\xC3\xA9 caf\xE9 \\u00e9";
  const NamedText full{"full", JsonText(inventory)};
  ASSERT_EQ(DifferenceOf(full, full), "null");
  std::string unsorted = full.text;
  const auto second = unsorted.find(",\"bios\"");
  const std::string first = unsorted.substr(1, second - 1);
  unsorted = "{ " + unsorted.substr(second + 1, unsorted.size() - second - 2) + "," + first + "}\n";
  EXPECT_EQ(ApplyIncrement({"unsorted", unsorted}, {"none", "null"}), full.text);
  EXPECT_EQ(ApplyIncrement(full, {"none", "null"}), full.text);
  inventory.networkDrives.back().path = "\xED\xA0\x80 \xC0\xAF";
  const std::string changes = DifferenceOf(full, {"new", JsonText(inventory)});
  EXPECT_THAT(changes, testing::HasSubstr(inventory.networkDrives.back().path));
  EXPECT_EQ(ApplyIncrement(full, {"changes", changes}), JsonText(inventory));
}

TEST_F(ApplyIncrementTest, ChangesGiveTheirResultOrAreRefusedWithTheReason) {
  const Tests::Json full = Tests::Json::parse(JsonText(FilledInventory()));
  const Tests::Json changes = {
      {"create", nullptr}, {"delete", nullptr}, {"update", nullptr}, {"device", full["device"]}};
  Tests::ExpectApplied("documents/applied-changes.json", full, changes);
}

}  // namespace
}  // namespace Norvik::Documents
