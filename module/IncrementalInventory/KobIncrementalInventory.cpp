#include "module/IncrementalInventory/KobIncrementalInventory.h"

#include <type_traits>
#include <utility>

#include "common/log/Logger.h"
#include "module/IncrementalInventory/Entities/IncrementalInventoryKOBInfo.h"

namespace Norvik::KOB {

KobIncrementalInventory::KobIncrementalInventory(std::unique_ptr<InventoryKOBInfo> previous,
                                                 std::unique_ptr<InventoryKOBInfo> current)
    : previous_(std::move(previous)), current_(std::move(current)) {}

std::unique_ptr<InventoryKOBInfo> KobIncrementalInventory::GenerateIncrementalInventoryKOB() const {
  NORVIK_SCOPE();
  auto changes = std::make_unique<IncrementalInventoryKOBInfo>();
  ForEachSection([&](const auto& section) {
    using Section = std::decay_t<decltype(section)>;
    using Value = typename Section::Value;
    const Value& previous = section.In(std::as_const(*previous_));
    const Value& current = section.In(std::as_const(*current_));
    if constexpr (Section::isList) {
      GetItems(section.In(*changes), changes->template Deleted<Value>(),
               changes->template Updated<Value>(), previous, current);
    } else if constexpr (Section::kind == SectionKind::Device) {
      section.In(*changes) = current;
    } else {
      changes->template Updated<Value>() = GetUpdatedItems(previous, current);
    }
  });
  return changes;
}

}  // namespace Norvik::KOB
