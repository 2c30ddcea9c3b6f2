#include "documents/ApplyIncrement.h"

#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "documents/DocumentError.h"
#include "documents/FileChanges.h"
#include "documents/FileDocument.h"
#include "documents/MachineDocument.h"
#include "documents/MachineSections.h"
#include "documents/Matching.h"

namespace Norvik::Documents {

namespace {

using KOB::SectionKind;

[[noreturn]] void ThrowMisfit(const char* what, const MachineSection& section,
                              const std::string& identity) {
  throw DocumentError("it " + std::string(what) + " in \"" + section.key + "\": " + identity);
}

/// The records of a list section while changes are applied to them.
class RecordList {
 public:
  RecordList(const MachineSection& section, const Json& records)
      : section_(section), records_(records.is_null() ? Json::array() : records) {
    for (std::size_t i = 0; i < records_.size(); ++i) first_.emplace(IdentityOf(records_[i]), i);
  }

  void Update(const Json& record) {
    const std::string identity = IdentityOf(record);
    const auto found = first_.find(identity);
    if (found != first_.end()) {
      records_[found->second] = record;
    } else if (section_.kind == SectionKind::ListOfUpdates) {
      records_.push_back(record);
    } else {
      ThrowMisfit("updates a record that is not there", section_, identity);
    }
  }
  void Create(const Json& record) {
    const std::string identity = IdentityOf(record);
    if (first_.count(identity)) ThrowMisfit("creates what is there", section_, identity);
    created_.push_back(record);
  }
  void Delete(const Json& record) {
    const std::string identity = IdentityOf(record);
    if (!first_.count(identity)) {
      ThrowMisfit("deletes a record that is not there", section_, identity);
    }
    deleted_.insert(identity);
  }

  /// The records that are left, then the created ones; null if no record is left.
  Json Result() && {
    Json result = Json::array();
    for (Json& record : records_) {
      if (!deleted_.count(IdentityOf(record))) result.push_back(std::move(record));
    }
    for (Json& record : created_) result.push_back(std::move(record));
    return result.empty() ? Json() : result;
  }

 private:
  std::string IdentityOf(const Json& record) const {
    Json identity;
    for (const std::string& key : section_.identity) identity[key] = record.at(key);
    return identity.dump();
  }

  const MachineSection& section_;
  Json records_;
  std::vector<Json> created_;
  /// Index in `records_` of the first record of an identity.
  std::unordered_map<std::string, std::size_t> first_;
  std::unordered_set<std::string> deleted_;
};

const Json& ChangesOf(const Json& incremental, const char* kind, const std::string& key) {
  static const Json none = Json::array();
  const Json& changes = incremental.at(kind);
  const auto found = changes.find(key);
  return changes.is_null() || found == changes.end() || found->is_null() ? none : *found;
}

void ApplyToList(const MachineSection& section, const Json& incremental, Json& value) {
  const Json& created = ChangesOf(incremental, "create", section.key);
  const Json& deleted = ChangesOf(incremental, "delete", section.key);
  const Json& updated = ChangesOf(incremental, "update", section.key);
  if (created.empty() && deleted.empty() && updated.empty()) return;
  RecordList records(section, value);
  for (const Json& record : deleted) records.Delete(record);
  for (const Json& record : updated) records.Update(record);
  for (const Json& record : created) records.Create(record);
  value = std::move(records).Result();
}

/// A location that is no longer known is zero in an incremental document and null in a full one.
bool IsZero(const Json& location) {
  for (const Json& coordinate : location) {
    if (coordinate != 0) return false;
  }
  return true;
}

void ApplyToRecord(const MachineSection& section, const Json& incremental, Json& value) {
  const Json& updated = ChangesOf(incremental, "update", section.key);
  if (!updated.is_object()) return;
  const bool lost = section.kind == SectionKind::Location && IsZero(updated);
  value = lost ? Json() : updated;
}

void ApplyToMachine(Json& document, const Json& changes) {
  CheckSameMachine(document, changes);
  for (const MachineSection& section : MachineSections()) {
    Json& value = document[section.key];
    if (section.kind == SectionKind::Device) {
      value = changes.at("device");
    } else if (section.IsList()) {
      ApplyToList(section, changes, value);
    } else {
      ApplyToRecord(section, changes, value);
    }
  }
}

/// Of either kind of document.
Json NoChanges(const Json& device) {
  return {{"create", nullptr},
          {"delete", nullptr},
          {"update", nullptr},
          {"device", device},
          {"paths", Json::array()}};
}

}  // namespace

std::string ApplyIncrement(const NamedText& full, const NamedText& incremental) {
  Document document = ParseDocument(full, Escapes::Kept);
  const bool files = IsFileDocument(document.value);
  CheckDocument(document, files ? CheckFullFileDocument : CheckFullDocument);
  Document changes = ParseDocument(incremental, Escapes::Kept);
  CheckSameKind(document, changes);
  CheckDocument(changes, files ? CheckIncrementalFileDocument : CheckIncrementalDocument);
  if (changes.value.is_null()) changes.value = NoChanges(document.value.at("device"));
  try {
    if (files) {
      ApplyToFiles(document.value, std::move(changes.value));
    } else {
      ApplyToMachine(document.value, changes.value);
    }
  } catch (const DocumentError& error) {
    throw DocumentError(incremental.name + " does not fit " + full.name + ": " + error.what());
  }
  return TextOf(document.value);
}

}  // namespace Norvik::Documents
