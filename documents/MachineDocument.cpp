#include "documents/MachineDocument.h"

#include <algorithm>

#include "documents/DocumentError.h"
#include "documents/MachineSections.h"

namespace Norvik::Documents {

namespace {

bool IsListOfRecords(const Json& value) {
  return value.is_array() && std::all_of(value.begin(), value.end(),
                                         [](const Json& record) { return record.is_object(); });
}

/// Without its identity, a record cannot be found in another document.
void CheckIdentities(const MachineSection& section, const Json& records) {
  for (const Json& record : records) {
    for (const std::string& key : section.identity) {
      if (record.contains(key)) continue;
      throw DocumentError("a record of " + Quoted(section.key) + " has no " + Quoted(key));
    }
  }
}

void CheckSection(const MachineSection& section, const Json& value) {
  const bool mayBeNull = section.IsList() || section.kind == KOB::SectionKind::Location;
  if (value.is_null() && mayBeNull) return;
  if (section.IsList() ? !IsListOfRecords(value) : !value.is_object()) {
    throw DocumentError(Quoted(section.key) + " is no " +
                        (section.IsList() ? "list of records" : "record"));
  }
  if (section.IsList()) CheckIdentities(section, value);
}

void CheckChanges(const Json& document, const char* kind) {
  const Json& changes = document.at(kind);
  if (changes.is_null()) return;
  if (!changes.is_object()) throw DocumentError(Quoted(kind) + " is no object");
  for (const auto& [key, value] : changes.items()) {
    const MachineSection* section = FindMachineSection(key);
    const bool known = section && (section->IsList() || kind == std::string("update"));
    if (!known) throw DocumentError(Quoted(kind) + " has an unknown section " + Quoted(key));
    CheckSection(*section, value);
  }
}

}  // namespace

void CheckFullDocument(const Json& document) {
  if (!document.is_object()) throw DocumentError("no full inventory: it is no object");
  for (const MachineSection& section : MachineSections()) {
    const auto found = document.find(section.key);
    if (found == document.end()) {
      throw DocumentError("no full inventory: it has no " + Quoted(section.key));
    }
    CheckSection(section, *found);
  }
}

void CheckIncrementalDocument(const Json& document) {
  if (document.is_null()) return;
  for (const char* key : {"create", "delete", "device", "update"}) {
    if (document.is_object() && document.contains(key)) continue;
    throw DocumentError("no incremental inventory: it has no " + Quoted(key));
  }
  if (!document["device"].is_object()) throw DocumentError("\"device\" is no record");
  for (const char* kind : {"create", "delete", "update"}) CheckChanges(document, kind);
}

}  // namespace Norvik::Documents
