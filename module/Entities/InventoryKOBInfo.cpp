#include "module/Entities/InventoryKOBInfo.h"

#include <algorithm>
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

using boost::property_tree::ptree;

bool IsEmpty(const ptree& node) {
  return node.empty() && (node.data().empty() || node.data() == "null");
}
bool IsRecord(const ptree& node) {
  return IsEmpty(node) || (!node.empty() && !node.front().first.empty());
}
bool IsListOfRecords(const ptree& node) {
  return IsEmpty(node) || (!node.empty() && std::all_of(node.begin(), node.end(), [](auto& child) {
           return child.first.empty() && IsRecord(child.second);
         }));
}

/// The section's node. One of another kind would read as an empty section, and everything in it
/// would be told as new.
const ptree& NodeOf(const ptree& document, const char* key, bool isList) {
  const ptree& node = document.get_child(key);
  if (isList ? IsListOfRecords(node) : IsRecord(node)) return node;
  throw boost::property_tree::ptree_bad_data(
      std::string(key) + " is no " + (isList ? "list of records" : "record"), node.data());
}

}  // namespace

InventoryKOBInfo::InventoryKOBInfo(const ptree& document) {
  ForEachSection([&](const auto& section) {
    using Section = std::decay_t<decltype(section)>;
    using Value = typename Section::Value;
    if constexpr (Section::isList) {
      section.In(*this) = LoadFromTree<Value>(NodeOf(document, section.key, true));
    } else if constexpr (Section::kind != SectionKind::Device) {
      section.In(*this) = Value(NodeOf(document, section.key, false));
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
