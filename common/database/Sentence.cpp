#include "common/database/Sentence.h"

#include <algorithm>
#include <stdexcept>

namespace Norvik::Common {
namespace {

// More values than SQLite allows. Keeps the number of an absurd placeholder from overflowing.
constexpr std::size_t MAX_NUMBER = 1000000;

bool IsDigit(char character) { return character >= '0' && character <= '9'; }

struct Placeholder {
  std::size_t number = 0;
  std::size_t length = 0;  ///< 0: no placeholder is here
};

Placeholder PlaceholderAt(const std::string& text, std::size_t begin) {
  const char closing = text[begin] == '{' ? '}' : text[begin] == '%' ? '%' : '\0';
  if (closing == '\0') return {};
  Placeholder found;
  std::size_t at = begin + 1;
  for (; at < text.size() && IsDigit(text[at]); ++at) {
    found.number =
        std::min(MAX_NUMBER, found.number * 10 + static_cast<std::size_t>(text[at] - '0'));
  }
  if (at == begin + 1 || at >= text.size() || text[at] != closing) return {};
  found.length = at + 1 - begin;
  return found;
}

// The end of a quotation, in which a doubled quote is a character. If it is not closed, SQLite
// refuses it.
std::size_t EndOfQuoted(const std::string& text, std::size_t begin, char closing) {
  for (std::size_t at = begin + 1; at < text.size(); ++at) {
    if (text[at] != closing) continue;
    if (closing == ']' || at + 1 == text.size() || text[at + 1] != closing) return at + 1;
    ++at;
  }
  return text.size();
}

std::size_t EndOfComment(const std::string& text, std::size_t begin, const char* closing) {
  const std::size_t at = text.find(closing, begin + 2);
  return at == std::string::npos ? text.size() : at + std::char_traits<char>::length(closing);
}

// The end of a part that is copied unchanged, or `begin` if none begins here.
std::size_t EndOfVerbatim(const std::string& text, std::size_t begin) {
  switch (text[begin]) {
    case '\'':
    case '"':
    case '`':
      return EndOfQuoted(text, begin, text[begin]);
    case '[':
      return EndOfQuoted(text, begin, ']');
    case '-':
      return text.compare(begin, 2, "--") == 0 ? EndOfComment(text, begin, "\n") : begin;
    case '/':
      return text.compare(begin, 2, "/*") == 0 ? EndOfComment(text, begin, "*/") : begin;
    default:
      return begin;
  }
}

void AddParameter(Sentence& sentence, const Placeholder& placeholder, bool asText) {
  if (placeholder.number == 0) {
    throw std::invalid_argument("placeholder 0 in a statement: values are counted from 1");
  }
  sentence.sql += '?';
  sentence.parameters.push_back({placeholder.number - 1, asText});
  sentence.valuesNeeded = std::max(sentence.valuesNeeded, placeholder.number);
}

Placeholder QuotedPlaceholderAt(const std::string& text, std::size_t begin, std::size_t end) {
  if (text[begin] != '\'') return {};
  const Placeholder found = PlaceholderAt(text, begin + 1);
  return found.length + 2 == end - begin ? found : Placeholder{};
}

}  // namespace

Sentence ParseSentence(const std::string& text) {
  Sentence sentence;
  sentence.sql.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = EndOfVerbatim(text, at);
    if (end > at) {
      if (const auto quoted = QuotedPlaceholderAt(text, at, end); quoted.length > 0) {
        AddParameter(sentence, quoted, true);
      } else {
        sentence.sql.append(text, at, end - at);
      }
      at = end;
    } else if (const auto plain = PlaceholderAt(text, at); plain.length > 0) {
      AddParameter(sentence, plain, false);
      at += plain.length;
    } else {
      sentence.sql += text[at++];
    }
  }
  return sentence;
}

}  // namespace Norvik::Common
