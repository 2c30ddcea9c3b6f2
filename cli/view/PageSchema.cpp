#include "cli/view/PageSchema.h"

#include <string>

#include "cli/why/Explanation.h"
#include "cli/why/SectionData.h"

namespace Norvik::Cli {

namespace {

/// A schema whose references are within itself.
class Schema {
 public:
  explicit Schema(const std::string& text) : schema_(OrderedJson::parse(text)) {}

  const OrderedJson& Properties() const { return schema_["properties"]; }

  /// A section as the page has it.
  OrderedJson Section(const OrderedJson& property) const {
    OrderedJson section = {{"description", property["description"]},
                           {"kind", property.contains("items") ? "list" : "record"},
                           {"fields", OrderedJson::object()}};
    if (property.contains("x-identity")) section["identity"] = property["x-identity"];
    AddFields(property, "", section["fields"]);
    return section;
  }

 private:
  /// What a property holds, or its elements do.
  const OrderedJson& Resolved(const OrderedJson& property) const {
    if (property.contains("items")) return Resolved(property["items"]);
    if (!property.contains("$ref")) return property;
    const std::string reference = property["$ref"];  // "#/$defs/bios"
    return schema_["$defs"].at(reference.substr(reference.rfind('/') + 1));
  }

  void AddFields(const OrderedJson& property, const std::string& prefix,
                 OrderedJson& fields) const {
    const OrderedJson& record = Resolved(property);
    if (!record.contains("properties")) return;
    for (const auto& [key, each] : record["properties"].items()) {
      OrderedJson field;
      for (const auto& [name, from] : KEPT) {
        if (each.contains(from)) field[name] = each[from];
      }
      if (!field.contains("type")) field["type"] = Resolved(each)["type"];
      fields[prefix + key] = std::move(field);
      AddFields(each, prefix + key + ".", fields);
    }
  }

  static constexpr const char* KEPT[][2] = {
      {"description", "description"}, {"source", "x-source"}, {"type", "type"}, {"unit", "x-unit"}};
  const OrderedJson schema_;
};

/// The sources of the system that the documents are of.
void SetSources(const std::string& section, bool ofMac, OrderedJson& fields) {
  for (auto& [key, field] : fields.items()) {
    field["source"] = ExplainKey(section + "." + key, ofMac).source;
  }
}

}  // namespace

OrderedJson PageSchema(bool ofMac) {
  OrderedJson sections;
  const Schema machine(InventorySchemaJson());
  for (const auto& [key, property] : machine.Properties().items()) {
    sections[key] = machine.Section(property);
    SetSources(key, ofMac, sections[key]["fields"]);
  }
  const Schema files(FileInventorySchemaJson());
  sections["paths"] = files.Section(files.Properties()["paths"]);
  return sections;
}

OrderedJson PageExplanations(bool ofMac) {
  OrderedJson sections;
  for (const std::string& key : SectionKeys()) {
    const Explanation explained = ExplainKey(key, ofMac);
    sections[key] = {{"missing", explained.emptyOrOdd}};
    if (!explained.needs.empty()) sections[key]["needs"] = explained.needs;
  }
  return sections;
}

}  // namespace Norvik::Cli
