#include "common/identification/SmBios.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include "common/identification/HostInfoProvider.h"

namespace {

using namespace Norvik::Common;
using Bytes = std::vector<std::uint8_t>;

/// A structure as firmware lays it out: the fields behind the header, then the texts.
void Append(Bytes& table, std::uint8_t type, std::uint8_t handle, const Bytes& fields,
            const std::vector<std::string>& texts) {
  table.insert(table.end(), {type, static_cast<std::uint8_t>(4 + fields.size()), handle, 0});
  table.insert(table.end(), fields.begin(), fields.end());
  for (const auto& text : texts) {
    table.insert(table.end(), text.begin(), text.end());
    table.push_back(0);
  }
  table.insert(table.end(), texts.empty() ? 2 : 1, 0);
}

/// Firmware, system, two memory modules, end; and where each structure ends.
struct Machine {
  Machine() {
    Add(0, {1, 2, 0x00, 0xE0, 3, 0xFF}, {"Fjord Firmware", "412.0.0", "03/14/2022"});
    Add(1, {1, 2, 0, 3}, {"Fjord", "Skerry 14", "C02XK0"});
    Add(17, {0x10, 0x00, 0x00, 0x20, 1}, {"DIMM 0"});
    Add(17, {0x11, 0x00, 0xFF, 0x7F, 0}, {});
    Append(table, 127, 9, {}, {});
  }
  void Add(std::uint8_t type, const Bytes& fields, const std::vector<std::string>& texts) {
    Append(table, type, static_cast<std::uint8_t>(ends.size()), fields, texts);
    ends.push_back(table.size());
  }
  Bytes table;
  std::vector<std::size_t> ends;
};

using List = std::list<const SmBios::CStruct*>;

List StructuresOf(const SmBios& bios, std::uint8_t type) {
  List structures;
  bios.GetStructData(type, structures);
  return structures;
}

std::size_t CountOf(const SmBios& bios) {
  std::size_t count = 0;
  for (int type = 0; type < 256; ++type) {
    count += StructuresOf(bios, static_cast<std::uint8_t>(type)).size();
  }
  return count;
}

TEST(SmBios, ListsTheStructuresOfATypeInTableOrder) {
  SmBios bios(0x301, Machine().table);
  EXPECT_TRUE(bios.IsValid());
  EXPECT_EQ(bios.GetVersion(), 769u);
  EXPECT_EQ(CountOf(bios), 4u);

  const List modules = StructuresOf(bios, 17);
  ASSERT_EQ(modules.size(), 2u);
  EXPECT_EQ(modules.front()->Header()[2], 2);
  EXPECT_EQ(modules.front()->Field(6, 2), 0x2000u);
  EXPECT_EQ(modules.front()->TextAt(8), "DIMM 0");
  EXPECT_EQ(modules.back()->Field(6, 2), 0x7FFFu);
  EXPECT_EQ(modules.back()->TextAt(8), "");
  EXPECT_TRUE(StructuresOf(bios, 4).empty());

  List list = StructuresOf(bios, 0);
  bios.GetStructData(1, list);
  ASSERT_EQ(list.size(), 2u);
  EXPECT_EQ(list.back()->GetString(3), "C02XK0");
}

TEST(SmBios, ReadsNothingBeyondAStructure) {
  const SmBios bios(0x301, Machine().table);
  const auto* const system = StructuresOf(bios, 1).front();
  EXPECT_EQ(system->Length(), 8u);
  for (const unsigned long text : {0ul, 4ul, ~0ul}) EXPECT_EQ(system->GetString(text), "") << text;
  EXPECT_EQ(system->TextAt(200), "");
  using Field = std::pair<std::size_t, std::size_t>;
  EXPECT_EQ(system->Field(4, 4), 0x03000201u);
  EXPECT_EQ(system->Field(0, 8), 0x0300020100010801u);
  for (const auto& [at, bytes] : {Field(7, 2), Field(8, 1), Field(~std::size_t{0}, 2)}) {
    EXPECT_EQ(system->Field(at, bytes), 0u) << at;
  }
}

TEST(SmBios, KeepsTheWholeStructuresOfATableThatWasCut) {
  EXPECT_FALSE(SmBios().IsValid());
  EXPECT_EQ(SmBios().GetVersion(), 0u);
  const Machine machine;
  for (std::size_t length = 0; length <= machine.table.size(); ++length) {
    const auto cut = machine.table.begin() + static_cast<std::ptrdiff_t>(length);
    SmBios bios(0x301, Bytes(machine.table.begin(), cut));
    const auto whole = std::count_if(machine.ends.begin(), machine.ends.end(),
                                     [&](std::size_t end) { return end <= length; });
    EXPECT_EQ(CountOf(bios), static_cast<std::size_t>(whole)) << length;
    EXPECT_EQ(bios.IsValid(), whole > 0) << length;
    EXPECT_EQ(bios.GetVersion(), whole > 0 ? 0x301u : 0u) << length;
  }
}

TEST(SmBios, EndsWhereTheBytesAreDamaged) {
  Bytes whole;
  Append(whole, 1, 0, {1}, {"one"});
  const std::pair<Bytes, std::size_t> cases[] = {
      {{}, 1},
      {{2, 4, 0, 0, 0, 0}, 2},
      {{2, 0, 0, 0, 0, 0}, 1},
      {{2, 1, 0, 0, 0, 0}, 1},
      {{2, 3, 0, 0, 0, 0}, 1},
      {{2, 255, 0, 0, 0, 0}, 1},                    // longer than the table
      {{2, 4, 0, 0, 0}, 1},                         // one NUL
      {{2, 4, 0, 0, 0, 3, 4, 0}, 1},                // one NUL, more behind it
      {{2, 4, 0, 0, 'a', 'b'}, 1},                  // a text without end
      {{127, 4, 0, 0, 0, 0, 2, 4, 0, 0, 0, 0}, 1},  // behind the end
  };
  for (const auto& [rest, count] : cases) {
    Bytes table = whole;
    table.insert(table.end(), rest.begin(), rest.end());
    EXPECT_EQ(CountOf(SmBios(0x301, table)), count) << testing::PrintToString(rest);
  }
}

TEST(HostInfoProvider, GivesTheNameThatTheSystemHas) {
  char name[257] = {};
  ASSERT_EQ(::gethostname(name, sizeof(name) - 1), 0);
  EXPECT_EQ(HostInfoProvider::GetHostName(), name);
}

}  // namespace
