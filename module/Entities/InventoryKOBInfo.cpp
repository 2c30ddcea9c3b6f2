#include "module/Entities/InventoryKOBInfo.h"

#include <boost/property_tree/ptree.hpp>

#include "json/SerializerHelpers.h"
#include "module/Entities/InventorySections.h"

namespace Norvik::KOB {
namespace {

template <class T>
json::JSON ToJson(const std::list<T>& records) {
  return StringListToJsonChild(records);
}
template <class T>
json::JSON ToJson(const std::vector<T>& records) {
  return VectorToJsonChild(records);
}
json::JSON ToJson(const Common::ISerializerJson& record) { return record; }

template <class Section>
json::JSON SectionToJson(const Section& section, const InventoryKOBInfo& inventory) {
  const auto& value = section.In(inventory);
  if constexpr (Section::kind == SectionKind::Location) {
    if (value.IsZero()) return {};
  }
  return ToJson(value);
}

}  // namespace

InventoryKOBInfo::InventoryKOBInfo(const boost::property_tree::ptree& document) {
  ForEachSection([&](const auto& section) {
    using Section = std::decay_t<decltype(section)>;
    using Value = typename Section::Value;
    if constexpr (Section::isList) {
      section.In(*this) = LoadFromTree<Value>(document.get_child(section.key));
    } else if constexpr (Section::kind != SectionKind::Device) {
      section.In(*this) = Value(document.get_child(section.key));
    }
  });
}

InventoryKOBInfo::~InventoryKOBInfo() = default;

InventoryKOBInfo::operator json::JSON() const {
  json::JSON document;
  ForEachSection(
      [&](const auto& section) { document[section.key] = SectionToJson(section, *this); });
  return document;
}

}  // namespace Norvik::KOB
