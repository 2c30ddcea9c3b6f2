#include "cli/commands/ChangeJson.h"

#include <utility>

#include "common/text/Text.h"

namespace Norvik::Cli {

namespace {

using Documents::Json;
using Documents::RecordChange;

constexpr const char* KINDS[] = {"came", "went", "changed"};

/// A value of a parsed document in UTF-8.
OrderedJson Exact(const Json& value) {
  return OrderedJson::parse(Common::EncodeUtf8Characters(Documents::TextOf(value)));
}

}  // namespace

OrderedJson ToJson(const RecordChange& change) {
  OrderedJson json = {{"section", change.section},
                      {"change", KINDS[change.kind]},
                      {"identity", Exact(change.identity)}};
  if (change.kind != RecordChange::Changed) {
    json["record"] = Exact(change.record);
    return json;
  }
  json["properties"] = OrderedJson::array();
  for (const auto& property : change.properties) {
    OrderedJson each = {{"property", property.property}};
    if (change.fromKnown) each["from"] = Exact(property.from);
    each["to"] = Exact(property.to);
    json["properties"].push_back(std::move(each));
  }
  return json;
}

std::string NameOfRecord(const OrderedJson& change) {
  const OrderedJson& identity = change["identity"];
  if (!identity.is_object()) return "";
  const auto text = [&](const char* key) { return identity[key].get<std::string>(); };
  if (change["section"] == Documents::FILE_SECTION) {
    const std::string extension = text("extension");
    return text("pathName") + "/" + text("filename") + (extension.empty() ? "" : "." + extension);
  }
  std::string name;
  for (const auto& [key, value] : identity.items()) {
    const std::string part = value.is_string() ? value.get<std::string>() : value.dump();
    if (!part.empty() && !value.is_null()) name += (name.empty() ? "" : ", ") + part;
  }
  return name;
}

}  // namespace Norvik::Cli
