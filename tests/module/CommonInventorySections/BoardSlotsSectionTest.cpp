#include "module/CommonInventorySections/BoardSlotsSection.h"

#include <gmock/gmock.h>

#include <boost/property_tree/exceptions.hpp>

#include "support/Collected.h"
#include "support/LogCapture.h"
#include "support/Programs.h"
#include "support/PropertyListText.h"
#include "support/SmbiosTable.h"

namespace Norvik::KOB {
namespace {

using testing::ElementsAre;
using namespace Tests;
using Lines = std::vector<std::string>;

class BoardSlotsSectionTest : public testing::Test {
 protected:
  Lines Collect(const std::string& chip) {
    programs.AddOutput("system_profiler", "-xml SPiBridgeDataType", chip);
    const auto smBios = std::make_shared<Common::SmBios>(0x301, table);
    using Info = SmbSystemSlotInfo;
    return TextsOf(Collected<Info>(BoardSlotsSection(smBios)), &Info::slotId, &Info::name,
                   &Info::type, &Info::description);
  }
  static std::string ChipReport(const std::string& name) {
    return Report("SPiBridgeDataType", {Dictionary({{"ibridge_model_name", Text(name)}})});
  }

  std::vector<std::uint8_t> table;
  Programs programs;
  LogCapture log;
};

TEST(BoardSlots, CodesHaveTexts) {
  const BoardSlotsSection section({});
  const std::pair<int, const char*> types[] = {{0, ""},
                                               {1, "Other"},
                                               {7, "PC Card (PCMCIA)"},
                                               {13, "NuBus"},
                                               {19, "AGP 8X"},
                                               {20, ""},
                                               {159, ""},
                                               {160, "PC-98/C20"},
                                               {165, "PCI Express"},
                                               {171, "PCI Express Gen 2"},
                                               {176, "PCI Express Gen 2 x16"},
                                               {182, "PCI Express Gen 3 x16"},
                                               {183, ""},
                                               {191, ""},
                                               {192, "TPM Security Module"},
                                               {193, "Apple T2 Security Chip"},
                                               {194, ""},
                                               {255, ""}};
  for (const auto& [code, text] : types) {
    EXPECT_EQ(section.Type(static_cast<unsigned char>(code)), text) << code;
  }
  const char* const uses[] = {"", "Other", "Unknown", "Available", "In use", ""};
  for (unsigned char code = 0; code < std::size(uses); ++code) {
    EXPECT_EQ(section.CurrentUsage(code), uses[code]) << int(code);
  }
}

TEST_F(BoardSlotsSectionTest, ListsTheSlotsAndSaysThatThereIsNoChip) {
  AddStructure(table, 9, 0x0A01, {1, 165, 0, 4}, {"Slot-1"});
  AddStructure(table, 9, 0x0002, {1}, {"T2"});
  AddStructure(table, 43, 0x0003, {}, {});
  const auto nameless = Report("SPiBridgeDataType",
                               {Dictionary({}), Dictionary({{"ibridge_model_name", Text("T2")}})});
  const std::pair<std::string, std::size_t> rows[] = {{"", 1},
                                                      {nameless, 1},
                                                      {Report("SPiBridgeDataType", {}), 0},
                                                      {Report("SPUSBDataType", {}), 0}};
  for (const auto& [report, messages] : rows) {
    const auto before = log.Texts(3).size();
    EXPECT_THAT(Collect(report), ElementsAre("2561|Slot-1|PCI Express|In use", "2|T2||"));
    EXPECT_EQ(log.Texts(3).size(), before + messages) << report;
  }
  EXPECT_TRUE(log.Holds(3, "T2 chip is not present on this system"));
}

TEST_F(BoardSlotsSectionTest, TheChipComesLastWithTheHandleOfItsStructure) {
  const std::string rest = "|Apple T2 Security Chip|In use";
  EXPECT_THAT(Collect(ChipReport("Apple T2 chip")), ElementsAre("-1|Apple T2 chip" + rest));
  AddStructure(table, 43, 0x0102, {}, {});
  AddStructure(table, 43, 0x0103, {}, {});
  EXPECT_THAT(Collect(ChipReport("some tpm")), ElementsAre("258|some tpm" + rest));
  EXPECT_THAT(Collect(ChipReport("iBridge")), ElementsAre("0|iBridge" + rest));
}

TEST_F(BoardSlotsSectionTest, AnAnswerThatIsNoReportRaises) {
  for (const std::string report : {"iBridge:\n", "<plist><dict/></plist>", "<plist><array>"}) {
    EXPECT_THROW(Collect(report), boost::property_tree::ptree_bad_path) << report;
  }
}

}  // namespace
}  // namespace Norvik::KOB
