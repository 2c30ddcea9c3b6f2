#include "forge/MacDocuments.h"

#include <algorithm>
#include <iterator>
#include <unordered_set>
#include <utility>

#include "documents/Difference.h"

namespace Norvik::Forge {

namespace {

/// The records of a list that another one has not. Both have about the same order.
Json OtherRecords(const Json& list, const Json& known) {
  Json others = Json::array();
  auto next = known.begin();
  for (const Json& record : list) {
    auto found = std::find(next, known.end(), record);
    if (found == known.end()) found = std::find(known.begin(), next, record);
    const bool isKnown = found != known.end() && *found == record;
    if (isKnown) {
      next = std::next(found);
    } else {
      others.push_back(record);
    }
  }
  return NullIfEmpty(std::move(others));
}

Json Folder(const Json& folder, Json files) {
  return {{"files", std::move(files)}, {"pathName", folder["pathName"]}};
}

/// The folders of a total document without the files that another one has as well.
Json OtherFiles(const Json& document, const Json& other) {
  std::unordered_set<std::string> known;
  for (const Json& folder : other["paths"]) {
    for (const Json& file : folder["files"]) known.insert(Folder(folder, file).dump());
  }
  Json folders = Json::array();
  for (const Json& folder : document["paths"]) {
    Json files = Json::array();
    for (const Json& file : folder["files"]) {
      if (known.count(Folder(folder, file).dump()) == 0) files.push_back(file);
    }
    if (!files.empty()) folders.push_back(Folder(folder, std::move(files)));
  }
  return folders;
}

}  // namespace

std::string MadeDocument::KindName() const {
  static constexpr const char* NAMES[] = {"inventory", "incremental-inventory", "file-inventory"};
  return NAMES[kind];
}

std::string IncrementBetween(const Json& before, const Json& after) {
  Json old = before;
  Json now = after;
  if (before.contains("paths")) {
    old["paths"] = OtherFiles(before, after);
    now["paths"] = OtherFiles(after, before);
  } else {
    for (const auto& [key, section] : before.items()) {
      if (!section.is_array() || !after[key].is_array()) continue;
      old[key] = OtherRecords(section, after[key]);
      now[key] = OtherRecords(after[key], section);
    }
  }
  return Documents::DifferenceOf({"before", Documents::TextOf(old)},
                                 {"after", Documents::TextOf(now)});
}

void MacDocuments::Begin(int day) {
  inventory_ = mac_.Inventory(day);
  if (files_ > 0) fileInventory_ = mac_.Files(day, files_);
}

std::vector<MadeDocument> MacDocuments::Next(int day) {
  std::vector<MadeDocument> made;
  if (!mac_.IsUsed(day)) return made;
  const auto follow = [&](Json& state, Json now, MadeDocument::Kind full,
                          MadeDocument::Kind increment) {
    const bool isFirst = state.is_null();
    std::string text = isFirst ? Documents::TextOf(now) : IncrementBetween(state, now);
    if (text == "null") return;
    made.push_back({day, isFirst ? full : increment, std::move(text)});
    state = std::move(now);
  };
  follow(inventory_, mac_.Inventory(day), MadeDocument::Inventory,
         MadeDocument::IncrementalInventory);
  if (files_ > 0) {
    follow(fileInventory_, mac_.Files(day, files_), MadeDocument::FileInventory,
           MadeDocument::FileInventory);
  }
  return made;
}

}  // namespace Norvik::Forge
