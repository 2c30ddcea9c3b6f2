#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Norvik::Common {

/// A statement's text with its placeholders replaced by SQLite's "?".
struct Sentence {
  struct Parameter {
    std::size_t value;  ///< index of the value that is bound here, from 0
    bool asText;        ///< the placeholder stood in quotes
  };
  std::string sql;
  std::vector<Parameter> parameters;  ///< in the order of the "?"
  std::size_t valuesNeeded = 0;
};

/// Reads a statement's text in one pass: `{n}` and `%n%`, alone or as the whole of a quoted
/// literal, become parameters. Any other literal, a quoted name or a comment stays as it is.
/// Raises `std::invalid_argument` for a placeholder numbered 0.
Sentence ParseSentence(const std::string& text);

}  // namespace Norvik::Common
