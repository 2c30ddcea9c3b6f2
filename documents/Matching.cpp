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

void CheckSameMachine(const Json& full, const Json& incremental) {
  const Json expected = full.at("device").value("guid", Json());
  const Json actual = incremental.at("device").value("guid", Json());
  if (actual == expected) return;
  throw DocumentError("it is of the machine " + actual.dump() + ", not " + expected.dump());
}

}  // namespace Norvik::Documents
