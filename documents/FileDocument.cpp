#include "documents/FileDocument.h"

#include "documents/DocumentError.h"
#include "module/Entities/FileStatus.h"

namespace Norvik::Documents {

namespace {

constexpr char TYPE[] = "typeInventory";

/// A key that an object must have, and the type of its value.
struct Member {
  const char* key;
  bool (Json::*is)() const;
  const char* kind;
};

const Member DOCUMENT[] = {
    {"device", &Json::is_object, "record"},
    {"paths", &Json::is_array, "list"},
    {TYPE, &Json::is_number_integer, "whole number"},
};
const Member FOLDER[] = {
    {"files", &Json::is_array, "list"},
    {"pathName", &Json::is_string, "text"},
};
const Member FILE_RECORD[] = {
    {"extension", &Json::is_string, "text"},
    {"fileStatus", &Json::is_number_integer, "whole number"},
    {"filename", &Json::is_string, "text"},
    {"size", &Json::is_number_integer, "whole number"},
};

template <std::size_t Count>
void CheckMembers(const std::string& what, const Json& value, const Member (&members)[Count]) {
  if (!value.is_object()) throw DocumentError(what + " is no object");
  for (const Member& member : members) {
    const auto found = value.find(member.key);
    if (found == value.end()) throw DocumentError(what + " has no " + Quoted(member.key));
    if (((*found).*member.is)()) continue;
    throw DocumentError(what + ": " + Quoted(member.key) + " is no " + member.kind);
  }
}

bool IsStatus(const Json& status, bool incremental) {
  if (!incremental) return status == KOB::WHOLE_INVENTORY;
  return status == KOB::NEW_FILE || status == KOB::MODIFIED_FILE || status == KOB::REMOVED_FILE;
}

void CheckFile(const std::string& folder, const Json& file, bool incremental) {
  CheckMembers("a file of " + folder, file, FILE_RECORD);
  if (const auto time = file.find("lastMod"); time != file.end() && !time->is_number_integer()) {
    throw DocumentError("a file of " + folder + ": \"lastMod\" is no whole number");
  }
  if (!IsStatus(file["fileStatus"], incremental)) {
    throw DocumentError("a file of " + folder + " has the state " + file["fileStatus"].dump());
  }
}

void Check(const Json& document, bool incremental) {
  CheckMembers("the document", document, DOCUMENT);
  const Json& type = document[TYPE];
  if (type != (incremental ? 1 : 0)) {
    throw DocumentError("no " + std::string(incremental ? "incremental" : "total") +
                        " file inventory: its type is " + type.dump());
  }
  for (const Json& folder : document["paths"]) {
    CheckMembers("a folder", folder, FOLDER);
    const std::string name = folder["pathName"].dump();
    for (const Json& file : folder["files"]) CheckFile(name, file, incremental);
  }
}

}  // namespace

bool IsFileDocument(const Json& document) {
  return document.is_object() && document.contains(TYPE);
}

void CheckFullFileDocument(const Json& document) { Check(document, false); }

void CheckIncrementalFileDocument(const Json& document) {
  if (!document.is_null()) Check(document, true);
}

}  // namespace Norvik::Documents
