#pragma once

#include <cstddef>
#include <string>

#include "json/JSON.h"

namespace json {

/// Whether more than `limit` brackets of a JSON text are open at once; brackets inside strings do
/// not count. Needs no valid JSON. Check text from outside with it before a parser gets the text:
/// parsers and destructors recurse once per level, so hostile nesting would exhaust the stack.
NORVIK_JSON_API bool NestsDeeperThan(const std::string& text, std::size_t limit);

}  // namespace json
