#include <boost/algorithm/string.hpp>

#include "documents/Difference.h"
#include "module/Inventories.h"

/// What the schemas and the guide say of identities and deletions, against what a difference shows.
namespace Norvik::Documents {
namespace {

using Tests::Json;
using Names = std::set<std::string>;

Json SchemaOf(const std::string& name) {
  return Json::parse(Tests::ContentOf(NORVIK_SOURCE_DIR "/docs/schema/" + name + ".schema.json"));
}

Json Difference(const Json& before, const Json& after) {
  return Json::parse(DifferenceOf({"before", before.dump()}, {"after", after.dump()}));
}

Names KeysOf(const Json& object) {
  Names keys;
  for (const auto& item : object.items()) keys.insert(item.key());
  return keys;
}

/// The inventory with the first record of each list alone.
Json Inventory(int start) {
  KOB::InventoryKOBInfo inventory;
  tests::Filler filler(start);
  KOB::ForEachSection([&](const auto& section) { filler.Fill(section.In(inventory)); });
  Json document = Json::parse(tests::JsonText(inventory));
  for (Json& section : document) {
    if (section.is_array()) section = Json::array({section[0]});
  }
  return document;
}

/// The document without its other lists.
Json WithOnly(const std::string& list, Json document) {
  for (const auto& item : document.items()) {
    if (item.value().is_array() && item.key() != list) item.value() = nullptr;
  }
  return document;
}

/// The fields that cannot change without making another record of it.
Names IdentityIn(const std::string& section, const Json& document, const Json& other) {
  Names identity;
  for (const auto& [key, value] : document[section][0].items()) {
    Json changed = document;
    Json& field = changed[section][0][key];
    field = value.is_boolean() ? Json(!value.get<bool>()) : other[section][0][key];
    const Json difference = Difference(document, changed);
    const bool isUpdate = !difference.is_null() && difference["update"].contains(section);
    if (!isUpdate) identity.insert(key);
  }
  return identity;
}

/// The keys of a deleted record; empty if deletions are not reported.
Names DeletionIn(const std::string& section, const Json& document) {
  Json without = document;
  without[section] = nullptr;
  const Json difference = Difference(document, without);
  return difference.is_null() ? Names() : KeysOf(difference["delete"][section][0]);
}

/// Identity and deletion of each list, from the table of the guide.
std::map<std::string, std::pair<Names, Names>> GuideTable() {
  std::map<std::string, std::pair<Names, Names>> table;
  std::istringstream guide(Tests::ContentOf(NORVIK_SOURCE_DIR "/docs/documents.md"));
  const auto words = [](const std::string& cell) {
    std::vector<std::string> list;
    boost::split(list, boost::trim_copy(cell), boost::is_space(), boost::token_compress_on);
    return list.front().empty() ? Names() : Names(list.begin(), list.end());
  };
  for (std::string line; std::getline(guide, line);) {
    std::vector<std::string> cells;
    boost::split(cells, line, boost::is_any_of("|"));
    if (cells.size() != 6 || !boost::starts_with(cells[2], " list")) continue;
    table[boost::trim_copy_if(cells[1], boost::is_any_of(" `"))] = {words(cells[3]),
                                                                    words(cells[4])};
  }
  return table;
}

TEST(Identities, OfSchemasAndGuideAreThoseOfTheMachineInventory) {
  const tests::ScopedLocale utf8{"C.UTF-8"};
  const Tests::LogCapture log;
  const Json document = Inventory(0);
  const Json other = Inventory(5000);
  const Json full = SchemaOf("inventory")["properties"];
  const Json incremental = SchemaOf("incremental-inventory");
  const Json deletions = incremental["properties"]["delete"]["properties"];
  auto guide = GuideTable();
  Names deleted;
  for (const auto& [section, value] : document.items()) {
    SCOPED_TRACE(section);
    EXPECT_EQ(full[section].contains("x-identity"), value.is_array());
    if (!value.is_array()) continue;
    const Json alone = WithOnly(section, document);
    const Names identity = IdentityIn(section, alone, other);
    const Names deletion = DeletionIn(section, alone);
    EXPECT_EQ(full[section]["x-identity"], Json(identity));
    EXPECT_EQ(full[section]["x-deleted"], Json(deletion));
    EXPECT_EQ(guide[section], std::pair(identity, deletion));
    if (deletion.empty()) continue;
    deleted.insert(section);
    EXPECT_EQ(deletions[section]["x-identity"], Json(identity));
    EXPECT_EQ(deletions[section]["x-deleted"], Json(deletion));
    const std::string record = deletions[section]["items"]["$ref"];
    EXPECT_EQ(KeysOf(incremental.at(Json::json_pointer(record.substr(1)))["properties"]), deletion);
  }
  EXPECT_EQ(KeysOf(deletions), deleted);
  EXPECT_EQ(deleted.size(), 19u);
}

TEST(Identities, OfTheSchemaAreThoseOfTheFileInventory) {
  const Json schema = SchemaOf("file-inventory");
  const Json& folders = schema["properties"]["paths"];
  const Json& files = schema["$defs"]["folder"]["properties"]["files"];
  const Json document = Tests::DataOf("documents/file-changes.json")["identity"];
  Json without = document;
  without["paths"] = Json::array();
  EXPECT_EQ(files["x-deleted"],
            Json(KeysOf(Difference(document, without)["paths"][0]["files"][0])));
  EXPECT_EQ(KeysOf(schema["$defs"]["file"]["properties"]), files["x-deleted"].get<Names>());

  /// Whether a change at the place gives a new file and a removed one.
  const auto isIdentity = [&](const std::string& place) {
    Json changed = document;
    Json& value = changed[Json::json_pointer(place)];
    value = value.is_string() ? Json("OTHER") : value.is_number() ? Json(5) : Json({{"name", "x"}});
    std::multiset<int> states;
    const Json difference = Difference(document, changed);
    for (const Json& folder : difference.is_null() ? Json::array() : difference["paths"]) {
      for (const Json& file : folder["files"]) states.insert(file["fileStatus"].get<int>());
    }
    return states == std::multiset<int>{1, 3};
  };
  Names identity;
  for (const auto& key : KeysOf(document["paths"][0]["files"][0])) {
    const bool canChange = key != "fileStatus" && key != "executable";
    if (canChange && isIdentity("/paths/0/files/0/" + key)) identity.insert(key);
  }
  EXPECT_EQ(files["x-identity"], Json(identity));
  EXPECT_TRUE(isIdentity("/paths/0/pathName"));
  EXPECT_EQ(folders["x-identity"], Json({"pathName"}));
  EXPECT_EQ(folders["x-deleted"], Json::array());
}

}  // namespace
}  // namespace Norvik::Documents
