#pragma once

#include <istream>

namespace json {

/// No document of this system nests deeper. Recursive readers must not be given more: hostile text
/// would exhaust the stack.
constexpr unsigned int MAX_NESTING = 64;

/// Whether the brackets and braces of a JSON text nest deeper than `limit`. Reads the stream to its
/// end unless it is so; text that is no JSON gets some answer.
bool NestsDeeper(std::istream& text, unsigned int limit);

}  // namespace json
