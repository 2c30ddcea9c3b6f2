#include "documents/Difference.h"

#include <boost/property_tree/json_parser.hpp>
#include <memory>
#include <sstream>

#include "documents/MachineDocument.h"
#include "module/IncrementalInventory/KobIncrementalInventory.h"

namespace Norvik::Documents {

namespace {

std::unique_ptr<KOB::InventoryKOBInfo> ReadInventory(const NamedText& document) {
  ReadFullDocument(document);  // The tree below does not tell a text from a record.
  std::istringstream stream(document.text);
  boost::property_tree::ptree tree;
  read_json(stream, tree);
  auto inventory = std::make_unique<KOB::InventoryKOBInfo>(tree);
  inventory->device = KOB::DeviceInfo(tree.get_child("device"));
  return inventory;
}

}  // namespace

std::string DifferenceOf(const NamedText& oldDocument, const NamedText& newDocument) {
  KOB::KobIncrementalInventory comparison(ReadInventory(oldDocument), ReadInventory(newDocument));
  return json::JSON(*comparison.GenerateIncrementalInventoryKOB()).strUgly();
}

}  // namespace Norvik::Documents
