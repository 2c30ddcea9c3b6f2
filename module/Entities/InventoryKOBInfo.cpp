#include "module/Entities/InventoryKOBInfo.h"

#include <boost/property_tree/ptree.hpp>
#include <functional>
#include <map>
#include <ostream>

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

template <class List>
void WriteList(const List& records, std::ostream& stream) {
  const char* separator = "[";
  for (const Common::ISerializerJson& record : records) {
    stream << separator << static_cast<json::JSON>(record).strUgly();
    separator = ",";
  }
  stream << (records.empty() ? "null" : "]");
}

template <class Section>
void WriteSection(const Section& section, const InventoryKOBInfo& inventory, std::ostream& stream) {
  if constexpr (Section::isList) {
    WriteList(section.In(inventory), stream);
  } else {
    stream << SectionToJson(section, inventory).strUgly();
  }
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

void InventoryKOBInfo::WriteTo(std::ostream& stream) const {
  std::map<std::string, std::function<void()>> writers;  // sorted by key, as a JSON object is
  ForEachSection([&](const auto& section) {
    writers[section.key] = [&, section] { WriteSection(section, *this, stream); };
  });
  char separator = '{';
  for (const auto& [key, write] : writers) {
    stream << separator << '"' << key << "\":";
    write();
    separator = ',';
  }
  stream << '}';
}

}  // namespace Norvik::KOB
