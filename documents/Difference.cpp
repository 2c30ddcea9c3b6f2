#include "documents/Difference.h"

#include <memory>
#include <sstream>

#include "documents/MachineDocument.h"
#include "module/Entities/InventoryReader.h"
#include "module/IncrementalInventory/KobIncrementalInventory.h"

namespace Norvik::Documents {

namespace {

std::unique_ptr<KOB::InventoryKOBInfo> ReadChecked(const NamedText& document) {
  ReadFullDocument(document);
  std::istringstream stream(document.text);
  return KOB::ReadInventory(stream, document.name);
}

}  // namespace

std::string DifferenceOf(const NamedText& oldDocument, const NamedText& newDocument) {
  KOB::KobIncrementalInventory comparison(ReadChecked(oldDocument), ReadChecked(newDocument));
  return json::JSON(*comparison.GenerateIncrementalInventoryKOB()).strUgly();
}

}  // namespace Norvik::Documents
