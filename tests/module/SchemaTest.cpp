#include "support/SchemaCheck.h"

#include "module/IncrementalInventory/Entities/IncrementalInventoryKOBInfo.h"
#include "module/Inventories.h"

namespace Norvik::KOB {
namespace {

using namespace tests;
using namespace Tests;
using Lines = std::set<std::string>;

constexpr char FULL[] = "inventory";
constexpr char INCREMENTAL[] = "incremental-inventory";

std::string Golden(const std::string& folder) {
  return GoldenText(NORVIK_SOURCE_DIR "/tests/module/" + folder + "Entities/small-document.json");
}

/// Marks all records of a section as created, deleted or updated.
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
  EXPECT_EQ(check.Problems("--cover --annotations"), Lines());
}

PlainJson DocumentOf(const std::string& schema) {
  return PlainJson::parse(schema == FULL ? JsonText(FilledInventory()) : JsonText(AllChanges()));
}

/// Corrupts a value in the given way and returns the expected errors in the form of `FirstWords`;
/// empty if the value cannot be corrupted so.
Lines Corrupt(PlainJson& value, const std::string& way, const std::string& place) {
  const PlainJson old = value;
  Lines wrong;
  if (way == "kind") {
    value = old.is_string() ? PlainJson(1.5) : PlainJson("x");
    wrong.insert(old.is_string() ? "1.5" : "'x'");
  } else if (way == "fraction" && old.is_number_integer()) {
    value = 0.5;
    wrong.insert("0.5");
  } else if (way == "emptied" && old.is_structured()) {
    value.clear();
    for (const auto& item : old.items()) wrong.insert("'" + item.key() + "'");
    // The parts of an incremental document hold only sections with changes.
    const std::string name = place.substr(place.find('#') + 1);
    const bool isPart = name == "/create" || name == "/delete" || name == "/update";
    if (old.is_array() || isPart) wrong = {value.dump()};
  }
  return wrong;
}

/// Corrupts all values at one depth of a document. Only one depth, because a corrupt value hides
/// those inside it.
void CorruptAt(int depth, PlainJson& value, const std::string& way, const std::string& place,
               Lines& problems) {
  if (depth == 0) {
    for (const auto& wrong : Corrupt(value, way, place)) problems.insert(place + ": " + wrong);
  } else if (value.is_structured()) {
    for (auto& [key, inner] : value.items()) {
      CorruptAt(depth - 1, inner, way, place + "/" + key, problems);
    }
  }
}

/// Cuts each error after its first word, which is the wrong value or key.
Lines FirstWords(const Lines& problems) {
  Lines words;
  for (const auto& line : problems)
    words.insert(line.substr(0, line.find(' ', line.find(' ') + 1)));
  return words;
}

TEST_F(SchemaTest, RefusesAnotherKindOfValueAFractionAndAnythingEmptyAnywhere) {
  Lines expected = {"incremental-inventory/emptied-0#: {}"};  // it holds no changes either
  for (const std::string schema : {FULL, INCREMENTAL}) {
    for (const std::string way : {"kind", "fraction", "emptied"}) {
      for (int depth = 0; depth < 7; ++depth) {
        const std::string name = way + "-" + std::to_string(depth);
        PlainJson document = DocumentOf(schema);
        CorruptAt(depth, document, way, schema + "/" + name + "#", expected);
        check.Add(schema, name, document.dump());
      }
    }
  }
  EXPECT_EQ(FirstWords(check.Problems()), expected);
  EXPECT_GT(expected.size(), 1500u);
}

TEST_F(SchemaTest, RefusesWhatNoDocumentMayHold) {
  Lines expected;
  const Json rows = DataOf("module/schema-refusals.json");
  for (const PlainJson row : rows) {
    const std::string schema = row[0], name = row[1];
    PlainJson document = DocumentOf(schema);
    document[PlainJson::json_pointer(row[2])] = row[3];
    check.Add(schema, name, document.dump());
    expected.insert(schema + "/" + name + "#" + row[2].get<std::string>() + ": " +
                    row[4].get<std::string>());
  }
  EXPECT_EQ(check.Problems(), expected);
}

TEST_F(SchemaTest, RefusesAnIncrementalDocumentWithoutChangesAndWhatIsNoJson) {
  PlainJson document = DocumentOf(INCREMENTAL);
  for (const char* part : {"create", "delete", "update"}) document[part] = nullptr;
  check.Add(INCREMENTAL, "unchanged", document.dump());
  check.Add(FULL, "cut", JsonText(FilledInventory()).substr(0, 1000));
  const Lines problems = check.Problems();
  ASSERT_EQ(problems.size(), 2u);
  EXPECT_THAT(*problems.begin(), StartsWith("incremental-inventory/unchanged#: "));
  EXPECT_THAT(*problems.rbegin(), StartsWith("inventory/cut: is no JSON: "));
}

const std::map<SectionKind, const char*> KINDS = {
    {SectionKind::List, "list"},
    {SectionKind::ListOfUpdates, "list, only updates are reported"},
    {SectionKind::Device, "single, always reported"},
    {SectionKind::Location, "single, or null"},
    {SectionKind::Single, "single"},
};

template <class Record>
std::string KeysOfDeletion() {
  std::string keys;
  for (const auto& [key, value] : ParseJson(JsonText(DeletedRecord<Record>(Record())))) {
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
  EXPECT_THAT(ContentOf(NORVIK_SOURCE_DIR "/docs/documents.md"),
              HasSubstr("\n| --- | --- | --- | --- |\n" + table + "\n"));
}

}  // namespace
}  // namespace Norvik::KOB
