#include "documents/MachineDocument.h"

#include <algorithm>

#include "documents/DocumentError.h"
#include "documents/MachineSections.h"

namespace Norvik::Documents {

namespace {

/// Values are written and freed by recursion: hostile text must not exhaust the stack.
constexpr int MAX_NESTING = 64;

Json Parse(const std::string& text) {
  const auto checkDepth = [](int depth, Json::parse_event_t /*event*/, Json& /*value*/) {
    if (depth > MAX_NESTING) throw DocumentError("nests deeper than any inventory");
    return true;
  };
  try {
    return Json::parse(text, checkDepth);
  } catch (const Json::exception& error) {
    // The parser quotes the token it failed at, however long that is.
    throw DocumentError("not JSON: " + std::string(error.what()).substr(0, 200));
  }
}

std::string Quoted(const std::string& key) { return '"' + key + '"'; }

bool IsListOfRecords(const Json& value) {
  return value.is_array() && std::all_of(value.begin(), value.end(),
                                         [](const Json& record) { return record.is_object(); });
}

/// A record names its identity, or nobody could say which one it is.
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

Json CheckedFull(Json document) {
  if (!document.is_object()) throw DocumentError("no full inventory: it is no object");
  for (const MachineSection& section : MachineSections()) {
    const auto found = document.find(section.key);
    if (found == document.end()) {
      throw DocumentError("no full inventory: it has no " + Quoted(section.key));
    }
    CheckSection(section, *found);
  }
  return document;
}

Json CheckedIncremental(Json document) {
  if (document.is_null()) return document;
  for (const char* key : {"create", "delete", "device", "update"}) {
    if (document.is_object() && document.contains(key)) continue;
    throw DocumentError("no incremental inventory: it has no " + Quoted(key));
  }
  if (!document["device"].is_object()) throw DocumentError("\"device\" is no record");
  for (const char* kind : {"create", "delete", "update"}) CheckChanges(document, kind);
  return document;
}

Json Read(const NamedText& document, Json (*check)(Json)) {
  try {
    return check(Parse(document.text));
  } catch (const DocumentError& error) {
    throw DocumentError(document.name + ": " + error.what());
  }
}

}  // namespace

Json ReadFullDocument(const NamedText& document) { return Read(document, CheckedFull); }

Json ReadIncrementalDocument(const NamedText& document) {
  return Read(document, CheckedIncremental);
}

}  // namespace Norvik::Documents
