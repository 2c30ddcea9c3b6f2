#include "documents/Difference.h"

#include <memory>
#include <sstream>
#include <utility>

#include "documents/FileChanges.h"
#include "documents/FileDocument.h"
#include "documents/MachineDocument.h"
#include "documents/Matching.h"
#include "module/Entities/InventoryReader.h"
#include "module/IncrementalInventory/KobIncrementalInventory.h"

namespace Norvik::Documents {

namespace {

std::unique_ptr<KOB::InventoryKOBInfo> ReadMachine(const NamedText& document) {
  std::istringstream stream(document.text);
  return KOB::ReadInventory(stream, document.name);
}

std::string MachineDifference(const NamedText& oldDocument, const NamedText& newDocument) {
  KOB::KobIncrementalInventory comparison(ReadMachine(oldDocument), ReadMachine(newDocument));
  return json::JSON(*comparison.GenerateIncrementalInventoryKOB()).strUgly();
}

}  // namespace

std::string DifferenceOf(const NamedText& oldDocument, const NamedText& newDocument) {
  Document before = ParseDocument(oldDocument);
  const bool files = IsFileDocument(before.value);
  const auto check = files ? CheckFullFileDocument : CheckFullDocument;
  CheckDocument(before, check);
  Document after = ParseDocument(newDocument);
  CheckSameKind(before, after);
  CheckDocument(after, check);
  if (!files) return MachineDifference(oldDocument, newDocument);
  return TextOf(FileDifference(std::move(before.value), std::move(after.value)));
}

}  // namespace Norvik::Documents
