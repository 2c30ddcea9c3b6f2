#include "common/identification/SmBios.h"

#include "common/identification/HostInfoProvider.h"
#include "support/SmbiosTable.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Tests;
using List = std::list<const SmBios::CStruct*>;

const Json TABLES = DataOf("common/identification/tables.json");
/// Firmware, system, two memory modules, end.
const Json& MACHINE = TABLES["machine"];

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
  SmBios bios(0x301, SmbiosTableOf(MACHINE));
  const List modules = StructuresOf(bios, 17);
  ASSERT_EQ(modules.size(), 2u);
  EXPECT_EQ(modules.front()->Header()[2], 2);
  EXPECT_EQ(modules.front()->Field(6, 2), 0x2000u);
  EXPECT_EQ(modules.front()->TextAt(8), "DIMM 0");
  EXPECT_EQ(modules.back()->Field(6, 2), 0x7FFFu);
  EXPECT_EQ(modules.back()->TextAt(8), "");
  List list = StructuresOf(bios, 0);
  bios.GetStructData(1, list);
  ASSERT_EQ(list.size(), 2u);
  EXPECT_EQ(list.back()->GetString(3), "C02XK0");
}

TEST(SmBios, ReadsNothingBeyondAStructure) {
  const SmBios bios(0x301, SmbiosTableOf(MACHINE));
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
  Json before = Json::array();
  std::size_t begin = 0;
  for (std::size_t whole = 0; whole < MACHINE.size(); ++whole) {
    before.push_back(MACHINE[whole]);
    const SmbiosBytes table = SmbiosTableOf(before);
    // The structure that ends the table does not count.
    for (std::size_t length = begin; length < table.size(); ++length) {
      const auto cut = table.begin() + static_cast<std::ptrdiff_t>(length);
      SmBios bios(0x301, {table.begin(), cut});
      EXPECT_EQ(CountOf(bios), whole) << length;
      EXPECT_EQ(bios.IsValid(), whole > 0) << length;
      EXPECT_EQ(bios.GetVersion(), whole > 0 ? 0x301u : 0u) << length;
    }
    begin = table.size();
  }
}

std::size_t CountAfterOne(const SmbiosBytes& rest) {
  SmbiosBytes table = SmbiosTableOf(Json::array({MACHINE[0]}));
  table.insert(table.end(), rest.begin(), rest.end());
  return CountOf(SmBios(0x301, table));
}

TEST(SmBios, EndsWhereTheBytesAreDamaged) {
  ExpectRows(TABLES["what follows a structure, and how many there are"], CountAfterOne);
}

TEST(HostInfoProvider, GivesTheNameThatTheSystemHas) {
  char name[257] = {};
  ASSERT_EQ(::gethostname(name, sizeof(name) - 1), 0);
  EXPECT_EQ(HostInfoProvider::GetHostName(), name);
}

}  // namespace
