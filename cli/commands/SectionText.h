#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/commands/Rendering.h"
#include "documents/DocumentText.h"

namespace Norvik::Cli {

/// A value of a parsed document for people, in UTF-8: sizes and times in their units by the
/// property's name, a list separated by commas, any other nested value as JSON.
OrderedJson ReadableValue(const std::string& property, const Documents::Json& value);

/// The section of a document as tables: a list has a column for each property that has a value in
/// some record, a single record two columns. A list of records in a record is a table of its own
/// after that, named "disk.partition".
std::string SectionText(const std::string& key, const Documents::Json& value, std::size_t width);

/// The section as comma-separated values (RFC 4180): the names of all properties, then a line for
/// each record. Values are exact; nested ones are JSON. Empty without a record.
std::string SectionCsv(const std::string& key, const Documents::Json& value);

}  // namespace Norvik::Cli
