#pragma once

#include <istream>
#include <memory>
#include <string>

#include "module/Entities/InventoryKOBInfo.h"

namespace Norvik::KOB {

/// The inventory of a stored document, including the device. Holds the tree of one record at a
/// time: the tree of a large document takes more than ten times the memory of its text.
///
/// Throws `json_parser_error` if the text is not JSON or nests too deep; the error names `file`.
/// Throws `ptree_bad_path` if a section other than the device is missing, and `ptree_bad_data` if a
/// section is of the wrong kind: it would be read as empty, and the next comparison would report
/// all of its records as new.
std::unique_ptr<InventoryKOBInfo> ReadInventory(std::istream& document, const std::string& file);

}  // namespace Norvik::KOB
