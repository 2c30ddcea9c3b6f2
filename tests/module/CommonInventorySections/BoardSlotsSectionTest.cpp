#include "module/CommonInventorySections/BoardSlotsSection.h"

#include "common/text/Text.h"
#include "support/Cases.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;

const BoardSlotsSection SECTION({});

TEST(BoardSlots, CodesHaveTexts) {
  const Json tables = DataOf("module/CommonInventorySections/board-slots.json");
  ExpectRows(
      tables["types"], +[](unsigned char code) { return Common::ToUtf8(SECTION.Type(code)); });
  ExpectRows(
      tables["uses"],
      +[](unsigned char code) { return Common::ToUtf8(SECTION.CurrentUsage(code)); });
}

}  // namespace
}  // namespace Norvik::KOB
