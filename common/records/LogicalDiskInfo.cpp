#include "common/records/LogicalDiskInfo.h"

#include "common/records/InventoryRecordDefinition.h"

namespace Norvik::Common {
namespace {

// Digits come from here and not from a stream, whose locale may group them.
std::string TreeText(std::uint64_t number) { return std::to_string(number); }
std::string TreeText(const std::string& text) { return text; }

}  // namespace

LogicalDiskInfo::operator ptree() const {
  ptree tree;
  const auto add = [&](const auto& field) {
    tree.push_back({field.key, ptree(TreeText(this->*field.member))});
  };
  std::apply([&](const auto&... field) { (add(field), ...); }, Fields());
  return tree;
}

template class WrittenRecord<LogicalDiskInfo>;
template class InventoryRecord<LogicalDiskInfo>;

}  // namespace Norvik::Common
