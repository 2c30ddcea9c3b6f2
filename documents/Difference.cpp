#include "documents/Difference.h"

#include <boost/property_tree/ptree.hpp>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

#include "common/text/MaskedDocument.h"
#include "documents/FileChanges.h"
#include "documents/FileDocument.h"
#include "documents/MachineDocument.h"
#include "documents/Matching.h"
#include "module/Entities/InventorySections.h"
#include "module/IncrementalInventory/KobIncrementalInventory.h"

namespace Norvik::Documents {

namespace {

using boost::property_tree::ptree;

/// Fills an empty node as the parser of trees would.
void FillTree(ptree& node, const Json& value) {
  if (value.is_object()) {
    for (const auto& [key, child] : value.items()) {
      FillTree(node.push_back({key, ptree()})->second, child);
    }
  } else if (value.is_array()) {
    for (const Json& child : value) FillTree(node.push_back({"", ptree()})->second, child);
  } else {
    node.data() = value.is_string() ? Common::MaskedDocument::Unmask(value) : value.dump();
  }
}

ptree TreeOf(const Json& record) {
  ptree tree;
  FillTree(tree, record);
  return tree;
}

/// @param document  a checked full document
std::unique_ptr<KOB::InventoryKOBInfo> InventoryOf(const Json& document) {
  auto inventory = std::make_unique<KOB::InventoryKOBInfo>();
  KOB::ForEachSection([&](const auto& section) {
    using Section = std::decay_t<decltype(section)>;
    auto& value = section.In(*inventory);
    const Json& stored = document.at(section.key);
    if constexpr (Section::isList) {
      for (const Json& record : stored) value.emplace_back(TreeOf(record));
    } else if (!stored.is_null()) {
      value = typename Section::Value(TreeOf(stored));
    }
  });
  return inventory;
}

std::string MachineDifference(const Json& before, const Json& after) {
  KOB::KobIncrementalInventory comparison(InventoryOf(before), InventoryOf(after));
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
  if (!files) return MachineDifference(before.value, after.value);
  return TextOf(FileDifference(std::move(before.value), std::move(after.value)));
}

}  // namespace Norvik::Documents
