#pragma once

#include "documents/ApplyIncrement.h"
#include "documents/Difference.h"
#include "documents/DocumentError.h"
#include "support/Test.h"

/// Rows of data files with values that are put into documents, each at its place (a JSON pointer).
namespace Norvik::Tests {

/// A cell as the text of a document: itself if it is a text, otherwise the given document with the
/// values of the cell at their places.
inline std::string Altered(Json document, const Json& values) {
  if (values.is_string()) return values;
  for (const auto& [place, value] : values.items()) document[Json::json_pointer(place)] = value;
  return document.dump();
}

/// Applies changes to a full document. The cells of a row: what is put into the full one, what is
/// put into the changes, and the values of the result at their places or, for documents that are
/// refused, a part of the reason. The reason calls the two "full" and "changes".
inline void ExpectApplied(const std::string& file, const Json& full, const Json& changes) {
  for (const Json& row : DataOf(file)) {
    Json result;
    const std::string reason = MessageOf<Documents::DocumentError>([&] {
      result = Json::parse(Documents::ApplyIncrement({"full", Altered(full, row[0])},
                                                     {"changes", Altered(changes, row[1])}));
    });
    if (row[2].is_string()) {
      EXPECT_THAT(reason, testing::HasSubstr(row[2].get<std::string>())) << row;
      continue;
    }
    EXPECT_EQ(reason, "") << row;
    for (const auto& [place, value] : row[2].items()) {
      EXPECT_EQ(Shown(result.value(Json::json_pointer(place), Json())), Shown(value)) << row;
    }
  }
}

/// First column of the table under "What an incremental document cannot report" of a guide in
/// docs/.
inline std::set<std::string> DocumentedLosses(const std::string& guide) {
  std::ifstream file(NORVIK_SOURCE_DIR "/docs/" + guide);
  std::set<std::string> names;
  bool inside = false;
  for (std::string line; std::getline(file, line);) {
    if (line.rfind("## ", 0) == 0) inside = line == "## What an incremental document cannot report";
    if (inside && line.rfind("| ", 0) == 0) names.insert(line.substr(2, line.find(" |", 2) - 2));
  }
  for (const char* heading : {"what", "---"}) names.erase(heading);
  return names;
}

/// Expects that a server loses what a guide says and no more. The cells of a row: the name of the
/// loss, what is put into the document before and into the one after, and what the server then has.
inline void ExpectLosses(const std::string& file, const Json& full, const std::string& guide) {
  std::set<std::string> losses;
  for (const Json& row : DataOf(file)) {
    losses.insert(row[0]);
    const Documents::NamedText before{"before", Altered(full, row[1])};
    const std::string changes = DifferenceOf(before, {"after", Altered(full, row[2])});
    const Json merged = Json::parse(ApplyIncrement(before, {"changes", changes}));
    const Json wanted = Json::parse(Altered(full, row[3]));
    EXPECT_EQ(Shown(Chosen(merged, wanted)), Shown(wanted)) << row[0];
  }
  EXPECT_EQ(losses, DocumentedLosses(guide));
}

}  // namespace Norvik::Tests
