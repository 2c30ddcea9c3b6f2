#include "documents/Matching.h"

#include "documents/DocumentError.h"
#include "documents/FileDocument.h"

namespace Norvik::Documents {

void CheckSameKind(const Document& first, const Document& second) {
  const bool files = IsFileDocument(first.value);
  if (!second.value.is_object() || files == IsFileDocument(second.value)) return;
  throw DocumentError(second.name + " is " + (files ? "no" : "a") + " file inventory, unlike " +
                      first.name);
}

void CheckSameMachine(const Json& known, const Json& told) {
  const Json knownGuid = known.at("device").value("guid", Json());
  const Json toldGuid = told.at("device").value("guid", Json());
  if (knownGuid == toldGuid) return;
  throw DocumentError("it is of the machine " + toldGuid.dump() + ", not " + knownGuid.dump());
}

}  // namespace Norvik::Documents
