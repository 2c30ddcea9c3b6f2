#include "documents/DocumentChanges.h"

#include <set>
#include <unordered_map>
#include <utility>

#include "documents/FileDocument.h"
#include "documents/MachineSections.h"
#include "module/Entities/FileStatus.h"

namespace Norvik::Documents {

namespace {

using KOB::SectionKind;
using Changes = std::vector<RecordChange>;
using Keys = std::vector<std::string>;

/// Differs in each document, and is its time rather than a fact of the machine.
constexpr char DOCUMENT_TIME[] = "assetDate";

Json ChosenOf(const Json& record, const Keys& keys) {
  Json chosen = Json::object();
  for (const std::string& key : keys) chosen[key] = record.value(key, Json());
  return chosen;
}

std::vector<PropertyChange> Differences(const Json& from, const Json& to) {
  std::set<std::string> keys;
  for (const Json* record : {&from, &to}) {
    for (const auto& item : record->items()) keys.insert(item.key());
  }
  std::vector<PropertyChange> differences;
  for (const std::string& key : keys) {
    if (key == DOCUMENT_TIME) continue;
    PropertyChange change{key, from.value(key, Json()), to.value(key, Json())};
    if (change.from != change.to) differences.push_back(std::move(change));
  }
  return differences;
}

/// @param from of the same identity; null pointer: not known
void AddUpdate(const std::string& section, const Json& identity, const Json* from, const Json& to,
               Changes& changes) {
  auto properties = Differences(from ? *from : Json::object(), to);
  if (properties.empty()) return;
  changes.push_back(
      {RecordChange::Changed, section, identity, {}, from != nullptr, std::move(properties)});
}

const Json& PartOf(const Json& document, const char* kind, const std::string& section) {
  static const Json none;
  const Json& part = document.at(kind);
  const auto found = part.find(section);
  return part.is_object() && found != part.end() ? *found : none;
}

/// Records by their identity, the first one of each.
class Index {
 public:
  void Add(const Json& identity, const Json& record) { records_.emplace(identity.dump(), &record); }
  const Json* Find(const Json& identity) const {
    const auto found = records_.find(identity.dump());
    return found == records_.end() ? nullptr : found->second;
  }

 private:
  std::unordered_map<std::string, const Json*> records_;
};

void AddList(const MachineSection& section, const Json& document, const Json& before,
             Changes& changes) {
  const auto add = [&](RecordChange::Kind kind, const char* part) {
    for (const Json& record : PartOf(document, part, section.key)) {
      changes.push_back({kind, section.key, ChosenOf(record, section.identity), record, true, {}});
    }
  };
  add(RecordChange::Went, "delete");
  Index former;
  if (!before.is_null()) {
    for (const Json& record : before.at(section.key)) {
      former.Add(ChosenOf(record, section.identity), record);
    }
  }
  for (const Json& record : PartOf(document, "update", section.key)) {
    const Json identity = ChosenOf(record, section.identity);
    const Json* const from = former.Find(identity);
    if (!from && !before.is_null()) {
      changes.push_back({RecordChange::Came, section.key, identity, record, true, {}});
    } else {
      AddUpdate(section.key, identity, from, record, changes);
    }
  }
  add(RecordChange::Came, "create");
}

bool IsLost(const MachineSection& section, const Json& record) {
  if (section.kind != SectionKind::Location) return false;
  for (const Json& coordinate : record) {
    if (coordinate != 0) return false;
  }
  return true;
}

void AddSingle(const MachineSection& section, const Json& document, const Json& before,
               Changes& changes) {
  const Json& to = section.kind == SectionKind::Device ? document.at("device")
                                                       : PartOf(document, "update", section.key);
  if (!to.is_object()) return;
  const bool isKnown = !before.is_null();
  if (section.kind == SectionKind::Device && !isKnown) return;
  const Json& from = isKnown ? before.at(section.key) : before;
  if (IsLost(section, to)) {
    changes.push_back({RecordChange::Went, section.key, {}, from, true, {}});
  } else if (isKnown && from.is_null()) {
    changes.push_back({RecordChange::Came, section.key, {}, to, true, {}});
  } else {
    AddUpdate(section.key, {}, isKnown ? &from : nullptr, to, changes);
  }
}

/// Calls `visit(identity, file)` with each file of a document, the file without its state.
template <class Visit>
void ForEachFile(const Json& document, Visit visit) {
  for (const Json& folder : document.at("paths")) {
    for (const Json& file : folder.at("files")) {
      Json identity = ChosenOf(file, {"filename", "extension"});
      identity["pathName"] = folder.at("pathName");
      visit(identity, file);
    }
  }
}

Json WithoutState(Json file) {
  file.erase("fileStatus");
  return file;
}

Changes FileChangesOf(const Json& document, const Json& before) {
  Index former;
  if (!before.is_null()) {
    ForEachFile(before,
                [&](const Json& identity, const Json& file) { former.Add(identity, file); });
  }
  Changes changes;
  ForEachFile(document, [&](const Json& identity, const Json& file) {
    const int status = file.at("fileStatus");
    if (status == KOB::MODIFIED_FILE) {
      const Json* const found = former.Find(identity);
      const Json from = found ? WithoutState(*found) : Json();
      AddUpdate(FILE_SECTION, identity, found ? &from : nullptr, WithoutState(file), changes);
      return;
    }
    const auto kind = status == KOB::NEW_FILE ? RecordChange::Came : RecordChange::Went;
    changes.push_back({kind, FILE_SECTION, identity, WithoutState(file), true, {}});
  });
  return changes;
}

}  // namespace

Changes ChangesOf(const Json& document, const Json& before) {
  Changes changes;
  if (document.is_null()) return changes;
  if (IsFileDocument(document)) return FileChangesOf(document, before);
  for (const MachineSection& section : MachineSections()) {
    if (section.IsList()) {
      AddList(section, document, before, changes);
    } else {
      AddSingle(section, document, before, changes);
    }
  }
  return changes;
}

}  // namespace Norvik::Documents
