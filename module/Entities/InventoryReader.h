#pragma once

#include <istream>
#include <memory>
#include <string>

#include "module/Entities/InventoryKOBInfo.h"

namespace Norvik::KOB {

/// The inventory of a stored document, the device included. Holds one record's tree at a time: the
/// tree of a large document would take more than ten times the memory of its text.
///
/// Raises `json_parser_error` if the text is not JSON, which then names the file, `ptree_bad_path`
/// if a section but the device is missing, and `ptree_bad_data` if one is of the wrong kind, since
/// it would read as an empty one and everything in it would be told as new.
std::unique_ptr<InventoryKOBInfo> ReadInventory(std::istream& document, const std::string& file);

}  // namespace Norvik::KOB
