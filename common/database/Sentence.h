#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Norvik::Common {

/// The text of a statement, its placeholders replaced by SQLite's "?".
struct Sentence {
  struct Parameter {
    std::size_t value;  ///< index of the value that is bound here, from 0
    bool asText;        ///< the placeholder was in quotes
  };
  std::string sql;
  std::vector<Parameter> parameters;  ///< in the order of the "?"
  std::size_t valuesNeeded = 0;       ///< the highest number of a placeholder
};

/// Parses the text of a statement in one pass: `{n}` and `%n%`, alone or as the whole of a quoted
/// literal, become parameters. Other literals, quoted names and comments stay as they are. Throws
/// `std::invalid_argument` for the placeholder 0.
Sentence ParseSentence(const std::string& text);

}  // namespace Norvik::Common
