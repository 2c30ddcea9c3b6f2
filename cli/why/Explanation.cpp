#include "cli/why/Explanation.h"

#include <algorithm>
#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/split.hpp>
#include <nlohmann/json.hpp>

#include "cli/commands/NearestName.h"
#include "cli/why/SectionData.h"
#include "host/HostError.h"

namespace Norvik::Cli {

namespace {

using Json = nlohmann::ordered_json;
using Texts = std::vector<std::string>;

const Json& Schema() {
  static const Json schema = Json::parse(InventorySchemaJson());
  return schema;
}

const Json& Data() {
  static const Json data = Json::parse(SectionsJson());
  return data;
}

std::string TextAt(const Json& object, const char* key) { return object.value(key, ""); }

/// The properties of what a property of the schema holds; null if it holds none.
const Json& PropertiesOf(const Json& property) {
  static const Json none;
  if (property.contains("$ref")) {
    const std::string reference = property["$ref"];  // "#/$defs/bios"
    return PropertiesOf(Schema()["$defs"].at(reference.substr(reference.rfind('/') + 1)));
  }
  if (property.contains("items")) return PropertiesOf(property["items"]);
  const auto found = property.find("properties");
  return found == property.end() ? none : *found;
}

Texts NamesIn(const Json& properties, const std::string& prefix) {
  Texts names;
  for (const auto& [name, property] : properties.items()) names.push_back(prefix + name);
  return names;
}

/// Walks along a path such as "disk.partition.bootable".
const Json& FindProperty(const std::string& key, const Texts& steps) {
  const Json* properties = &Schema()["properties"];
  const Json* found = nullptr;
  std::string prefix;
  for (const auto& step : steps) {
    const auto next = properties->find(step);
    if (next == properties->end()) {
      if (properties->empty()) {
        throw Host::UsageError("unknown key " + key + "; " + prefix.substr(0, prefix.size() - 1) +
                               " has no properties");
      }
      const auto names = NamesIn(*properties, prefix);
      throw Host::UsageError(UnknownName(prefix.empty() ? "section" : "key", prefix + step, names));
    }
    found = &*next;
    prefix += step + ".";
    properties = &PropertiesOf(*found);
  }
  return *found;
}

AskedSource SourceOf(const std::string& text) {
  const auto blank = text.find(' ');
  return {text.substr(0, blank), blank == std::string::npos ? "" : text.substr(blank + 1)};
}

bool IsNamedIn(const std::string& text, const AskedSource& source) {
  if (source.kind == "smbios") return boost::contains(text, "SMBIOS");
  if (source.kind == "registry" && boost::contains(text, "I/O registry")) return true;
  return boost::contains(text, source.name);
}

/// What the source of a property names; everything that its section asks, if it names nothing.
void KeepNamed(const std::string& text, std::vector<AskedSource>& asked) {
  std::vector<AskedSource> named;
  std::copy_if(asked.begin(), asked.end(), std::back_inserter(named),
               [&](const AskedSource& source) { return IsNamedIn(text, source); });
  if (!named.empty()) asked = named;
}

/// Whether a note with these keys is one of a section with all its properties, or of a property.
bool Concerns(const Json& keys, const Explanation& explained) {
  const bool isSection = explained.key == explained.section;
  if (keys.empty()) return isSection;
  return std::any_of(keys.begin(), keys.end(), [&](const std::string& key) {
    return isSection ? boost::starts_with(key, explained.section + ".") : key == explained.key;
  });
}

/// "displays.serial: from EDID: ...; from the report: ..."
std::string TextOfRow(const Json& row, const Json& columns) {
  std::string text = row["of"].get<std::string>() + ":";
  for (std::size_t i = 0; i < row["cells"].size(); ++i) {
    text += (i == 0 ? " " : "; ") + columns[i].get<std::string>() + ": " +
            row["cells"][i].get<std::string>();
  }
  return text;
}

void AddNotes(const Json& group, Explanation& explained) {
  if (explained.key == explained.section) {
    for (const auto& text : group.value("text", Json::array())) explained.notes.push_back(text);
  }
  for (const auto& row : group.value("rows", Json::array())) {
    if (Concerns(Json::array({row["of"]}), explained)) {
      explained.notes.push_back(TextOfRow(row, group["columns"]));
    }
  }
  for (const auto& note : group["notes"]) {
    if (Concerns(note["of"], explained)) explained.notes.push_back(note["text"]);
  }
}

}  // namespace

Texts SectionKeys() { return NamesIn(Schema()["properties"], ""); }

Texts NotedKeys() {
  Texts keys = NamesIn(Data()["sections"], "");
  for (const auto& group : Data()["groups"]) {
    for (const auto& key : group["sections"]) keys.push_back(key);
    for (const auto& row : group.value("rows", Json::array())) keys.push_back(row["of"]);
    for (const auto& note : group["notes"]) {
      for (const auto& key : note["of"]) keys.push_back(key);
    }
  }
  return keys;
}

Explanation ExplainKey(const std::string& key, bool ofMac) {
  Texts steps;
  boost::split(steps, key, boost::is_any_of("."));
  const Json& property = FindProperty(key, steps);
  const Json& section = Data()["sections"].at(steps.front());
  const Json other = ofMac ? Json() : section.value("linux", Json());
  const Json& here = other.is_null() ? section : other;
  Explanation explained;
  explained.key = key;
  explained.section = steps.front();
  explained.description = TextAt(property, "description");
  explained.source = other.is_null() ? TextAt(property, "x-source") : TextAt(other, "source");
  explained.filled = other.is_null() ? TextAt(property, "x-filled") : "measured";
  explained.needs = TextAt(here, "needs");
  for (const auto& text : here["reads"]) explained.asked.push_back(SourceOf(text));
  if (steps.size() > 1 && other.is_null()) KeepNamed(explained.source, explained.asked);
  explained.emptyOrOdd = section["empty"];
  for (const auto& group : Data()["groups"]) {
    const auto& sections = group["sections"];
    if (std::count(sections.begin(), sections.end(), explained.section) == 0) continue;
    AddNotes(group, explained);
  }
  return explained;
}

}  // namespace Norvik::Cli
