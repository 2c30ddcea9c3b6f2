#pragma once

#include <string>

#include "common/action/ActionParameters.h"
#include "host/OutputText.h"
#include "host/actions/ActionResult.h"

namespace Norvik::Host {

/// A cell of a response's table: numbers and booleans as such, everything else as text.
OrderedJson CellToJson(const Common::ActionPropertyValue& value);
/// The text of a JSON array with the cells of a row. Bytes that are not UTF-8 are replaced.
std::string RowText(const Common::ActionResponseTable::Row& row);

// What a command and the running agent send each other. The readers throw a subclass of
// `std::exception` for malformed JSON.

/// The text of a JSON object. Row by row, since the rows of a large response as JSON values would
/// take several times its memory.
std::string ToJsonText(const ActionResult& result);
/// A result that looks the same to whoever prints it: texts, times and configurations become
/// `std::string`, whole numbers 64 bits wide.
ActionResult ResultOf(const OrderedJson& json);

OrderedJson ToJson(const Common::ActionParameters& parameters);
/// Texts become `wxString`, whole numbers `unsigned long long`. Throws `UsageError` for other
/// values.
Common::ActionParameters ActionParametersOf(const OrderedJson& json);

}  // namespace Norvik::Host
