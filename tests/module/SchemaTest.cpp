#include "support/SchemaCheck.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <utility>

#include "module/IncrementalInventory/Entities/IncrementalInventoryKOBInfo.h"
#include "module/Inventories.h"
#include "support/Cases.h"

namespace Norvik::KOB {
namespace {

using namespace tests;
using Json = nlohmann::json;
using Tests::SchemaCheck;
using Lines = std::set<std::string>;

constexpr char FULL[] = "inventory";
constexpr char INCREMENTAL[] = "incremental-inventory";

std::string Golden(const std::string& folder) {
  return GoldenText(NORVIK_SOURCE_DIR "/tests/module/" + folder + "Entities/small-document.json");
}

/// What a section tells if all its records are created, deleted or updated.
template <class Section>
void Change(const Section& section, const std::string& change,
            IncrementalInventoryKOBInfo& changes) {
  using Value = typename Section::Value;
  const InventoryKOBInfo inventory = FilledInventory();
  const Value& value = section.In(inventory);
  if constexpr (Section::isList) {
    if (change == "create") section.In(changes) = value;
    for (const auto& record : value) {
      if (change == "delete") changes.Deleted<Value>().emplace_back(record);
    }
  }
  if constexpr (Section::kind != SectionKind::Device) {
    if (change == "update") changes.Updated<Value>() = value;
  }
}

IncrementalInventoryKOBInfo AllChanges() {
  IncrementalInventoryKOBInfo changes;
  changes.device = FilledInventory().device;
  ForEachSection([&](const auto& section) {
    for (const char* change : {"create", "delete", "update"}) Change(section, change, changes);
  });
  return changes;
}

class SchemaTest : public testing::Test {
 protected:
  const ScopedLocale utf8{"C.UTF-8"};
  SchemaCheck check;
};

TEST_F(SchemaTest, AllowsEveryDocumentAndHasNoPropertyThatOccursInNone) {
  check.Add(FULL, "filled", JsonText(FilledInventory()));
  check.Add(FULL, "empty", JsonText(InventoryKOBInfo()));
  check.Add(FULL, "golden", Golden(""));
  check.Add(INCREMENTAL, "everything", JsonText(AllChanges()));
  check.Add(INCREMENTAL, "nothing", JsonText(IncrementalInventoryKOBInfo()));
  check.Add(INCREMENTAL, "golden", Golden("IncrementalInventory/"));
  ForEachSection([&](const auto& section) {
    for (const std::string change : {"create", "delete", "update"}) {
      IncrementalInventoryKOBInfo changes;
      Change(section, change, changes);
      check.Add(INCREMENTAL, change + "-" + section.key, JsonText(changes));
    }
  });
  EXPECT_EQ(check.Problems({"--cover", "--annotations"}), Lines());
}

/// Calls `action` with each value of a document and its place, outer values first.
template <class Action>
void Walk(Json& value, const std::string& place, Action action) {
  action(value, place);
  if (!value.is_structured()) return;
  for (auto& [key, inner] : value.items()) Walk(inner, place + "/" + key, action);
}

/// Documents that go wrong in many places, and what the validator must say of each place.
class Refusals {
 public:
  explicit Refusals(SchemaCheck& target) : check(target) {}

  /// `spoil(value, place)` spoils a value and tells what is wrong then, or nothing.
  template <class Spoil>
  void Add(const std::string& schema, const std::string& name, Json document, Spoil spoil) {
    Walk(document, "", [&](Json& value, const std::string& place) {
      const std::string problem = spoil(value, place);
      if (!problem.empty()) expected.insert(schema + "/" + name + "#" + place + ": " + problem);
    });
    check.Add(schema, name, document.dump());
  }

  SchemaCheck& check;
  Lines expected;
};

Json DocumentOf(const std::string& schema) {
  return Json::parse(schema == FULL ? JsonText(FilledInventory()) : JsonText(AllChanges()));
}

std::string TypeOf(const Json& value) {
  if (value.is_boolean()) return "boolean";
  return value.is_number_float() ? "number" : "integer";
}

TEST_F(SchemaTest, RefusesAnUnknownKeyInEachObjectAndAValueOfAnotherKindAnywhere) {
  Refusals refusals(check);
  for (const char* schema : {FULL, INCREMENTAL}) {
    refusals.Add(schema, "extra", DocumentOf(schema), [](Json& value, const std::string&) {
      if (!value.is_object()) return "";
      value["novelty"] = nullptr;
      return "Additional properties are not allowed ('novelty' was unexpected)";
    });
    refusals.Add(schema, "kinds", DocumentOf(schema), [](Json& value, const std::string& place) {
      const bool mayBeNull = place == "/os/installDate" || place == "/update/os/installDate";
      if (value.is_structured() || mayBeNull) return std::string();
      const bool text = value.is_string();
      const Json old = std::exchange(value, text ? Json(1.5) : Json("x"));
      return text ? "1.5 is not of type 'string'" : "'x' is not of type '" + TypeOf(old) + "'";
    });
  }
  EXPECT_EQ(check.Problems(), refusals.expected);
  EXPECT_GT(refusals.expected.size(), 600u);
}

TEST_F(SchemaTest, RefusesAnObjectWithoutAnyOfItsKeys) {
  Refusals refusals(check);
  for (const char* schema : {FULL, INCREMENTAL}) {
    Lines keys;
    Json document = DocumentOf(schema);
    Walk(document, "", [&](Json& value, const std::string&) {
      if (!value.is_object()) return;
      for (const auto& item : value.items()) keys.insert(item.key());
    });
    for (const auto& key : keys) {
      const auto drop = [&](Json& value, const std::string& place) {
        const bool object = value.is_object() && value.erase(key) > 0;
        // The parts of an incremental document hold just the sections that tell something.
        const bool part = place == "/create" || place == "/delete" || place == "/update";
        return object && !part ? "'" + key + "' is a required property" : "";
      };
      refusals.Add(schema, "without-" + key, document, drop);
    }
  }
  EXPECT_EQ(check.Problems(), refusals.expected);
  EXPECT_GT(refusals.expected.size(), 600u);
}

/// The lines without what is wrong there.
Lines PlacesOf(const Lines& problems) {
  Lines places;
  for (const auto& problem : problems) places.insert(problem.substr(0, problem.find(": ")));
  return places;
}

TEST_F(SchemaTest, RefusesATextInPlaceOfAnyRecordOrListAndAListWithoutRecords) {
  Refusals refusals(check);
  for (const char* schema : {FULL, INCREMENTAL}) {
    // A spoiled value hides those in it, so each document is spoiled at one depth only.
    for (int depth = 0; depth < 7; ++depth) {
      const auto isHere = [depth](const std::string& place) {
        return std::count(place.begin(), place.end(), '/') == depth;
      };
      const auto toText = [&](Json& value, const std::string& place) {
        if (!value.is_structured() || !isHere(place)) return "";
        value = "x";
        return "no structure";
      };
      const auto toEmptyList = [&](Json& value, const std::string& place) {
        if (!value.is_array() || !isHere(place)) return "";
        value = Json::array();
        return "no records";
      };
      refusals.Add(schema, "text-" + std::to_string(depth), DocumentOf(schema), toText);
      refusals.Add(schema, "empty-" + std::to_string(depth), DocumentOf(schema), toEmptyList);
    }
  }
  EXPECT_GT(refusals.expected.size(), 200u);
  EXPECT_EQ(PlacesOf(check.Problems()), PlacesOf(refusals.expected));
}

TEST_F(SchemaTest, RefusesWhatNoDocumentMaySay) {
  Lines expected;
  const Tests::Json rows = Tests::DataOf("module/schema-refusals.json");
  for (const Json row : rows) {
    const std::string schema = row[0], name = row[1];
    Json document = DocumentOf(schema);
    document[Json::json_pointer(row[2])] = row[3];
    check.Add(schema, name, document.dump());
    expected.insert(schema + "/" + name + "#" + row[2].get<std::string>() + ": " +
                    row[4].get<std::string>());
  }
  EXPECT_EQ(check.Problems(), expected);
}

TEST_F(SchemaTest, RefusesAnIncrementalDocumentWithoutChangesAndWhatIsNoJson) {
  Json document = DocumentOf(INCREMENTAL);
  for (const char* part : {"create", "delete", "update"}) document[part] = nullptr;
  check.Add(INCREMENTAL, "unchanged", document.dump());
  check.Add(FULL, "cut", JsonText(FilledInventory()).substr(0, 1000));
  const Lines problems = check.Problems();
  ASSERT_EQ(problems.size(), 2u);
  EXPECT_THAT(*problems.begin(), testing::StartsWith("incremental-inventory/unchanged#: "));
  EXPECT_THAT(*problems.rbegin(), testing::StartsWith("inventory/cut: is no JSON: "));
}

const std::map<SectionKind, const char*> KINDS = {
    {SectionKind::List, "list"},
    {SectionKind::ListOfUpdates, "list, only updates are told"},
    {SectionKind::Device, "single, always told"},
    {SectionKind::Location, "single, or null"},
    {SectionKind::Single, "single"},
};

template <class Record>
std::string KeysOfDeletion() {
  std::string keys;
  for (const auto& [key, value] : ParseJson(JsonText(DeletedRecordOf<Record>(Record())))) {
    keys += (keys.empty() ? "" : " ") + key;
  }
  return keys;
}

TEST(DocumentsGuideTest, HasTheTableOfTheSections) {
  std::map<std::string, std::string> rows;
  ForEachSection([&](const auto& section) {
    using Section = std::decay_t<decltype(section)>;
    std::string identity, deletion;
    if constexpr (Section::isList) {
      using Record = typename Section::Value::value_type;
      identity = IdentityOf<Record>();
      if (Section::kind == SectionKind::List) deletion = KeysOfDeletion<Record>();
    }
    rows[section.key] =
        std::string(KINDS.at(Section::kind)) + " | " + identity + " | " + deletion + " |\n";
  });
  std::string table;
  for (const auto& [key, row] : rows) table += "| `" + key + "` | " + row;
  EXPECT_THAT(Tests::ContentOf(NORVIK_SOURCE_DIR "/docs/documents.md"),
              testing::HasSubstr("\n| --- | --- | --- | --- |\n" + table + "\n"));
}

}  // namespace
}  // namespace Norvik::KOB
