#include "module/IncrementalInventory/Entities/IncrementalInventoryKOBInfo.h"

#include <type_traits>
#include <utility>

#include "json/SerializerHelpers.h"

namespace Norvik::KOB {
namespace {

template <class T>
void AddIfAny(json::JSON& target, const char* key, const std::list<T>& records) {
  AddListIfNotEmptyList(target, key, records);
}
template <class T>
void AddIfAny(json::JSON& target, const char* key, const std::vector<T>& records) {
  AddListIfNotEmptyVector(target, key, records);
}
template <class T>
void AddIfAny(json::JSON& target, const char* key, const boost::optional<T>& record) {
  AddIfNotEmpty(target, key, record);
}

/// An object with `select(section)` for each list whose created and deleted records are written.
/// Those of the memory slots deliberately are not: the server takes their updates only.
template <class Select>
json::JSON ListsToJson(Select select) {
  json::JSON lists;
  ForEachSection([&](const auto& section) {
    using Section = std::decay_t<decltype(section)>;
    if constexpr (Section::kind == SectionKind::List) {
      AddIfAny(lists, section.key, select(section));
    }
  });
  return lists;
}

}  // namespace

IncrementalInventoryKOBInfo::~IncrementalInventoryKOBInfo() = default;

json::JSON IncrementalInventoryKOBInfo::CreateInventorySection() const {
  return ListsToJson([&](const auto& section) -> const auto& { return section.In(*this); });
}

json::JSON IncrementalInventoryKOBInfo::DeleteInventorySection() const {
  return ListsToJson([&](const auto& section) -> const auto& {
    return Deleted<typename std::decay_t<decltype(section)>::Value>();
  });
}

json::JSON IncrementalInventoryKOBInfo::UpdateInventorySection() const {
  json::JSON updates;
  ForEachSection([&](const auto& section) {
    using Section = std::decay_t<decltype(section)>;
    if constexpr (Section::kind != SectionKind::Device) {
      AddIfAny(updates, section.key, Updated<typename Section::Value>());
    }
  });
  return updates;
}

IncrementalInventoryKOBInfo::operator json::JSON() const {
  json::JSON created = CreateInventorySection();
  json::JSON deleted = DeleteInventorySection();
  json::JSON updated = UpdateInventorySection();
  if (created.IsNull() && deleted.IsNull() && updated.IsNull()) return {};
  json::JSON document;
  document["create"] = std::move(created);
  document["delete"] = std::move(deleted);
  document["device"] = static_cast<json::JSON>(device);
  document["update"] = std::move(updated);
  return document;
}

}  // namespace Norvik::KOB
