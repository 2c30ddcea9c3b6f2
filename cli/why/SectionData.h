#pragma once

#include <string>

namespace Norvik::Cli {

/// The content of docs/sections.json, docs/schema/inventory.schema.json and
/// docs/schema/file-inventory.schema.json, as they were when the program was built.
std::string SectionsJson();
std::string InventorySchemaJson();
std::string FileInventorySchemaJson();

}  // namespace Norvik::Cli
