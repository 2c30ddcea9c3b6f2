#pragma once

#include <string>

namespace Norvik::Cli {

/// The content of docs/sections.json and docs/schema/inventory.schema.json, as they were when the
/// program was built.
std::string SectionsJson();
std::string InventorySchemaJson();

}  // namespace Norvik::Cli
