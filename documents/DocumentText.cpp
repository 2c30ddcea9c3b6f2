#include "documents/DocumentText.h"

#include <iterator>
#include <sstream>

#include "common/text/MaskedDocument.h"
#include "documents/DocumentError.h"

namespace Norvik::Documents {

namespace {

/// Values are written and freed by recursion: hostile text must not exhaust the stack.
constexpr int MAX_NESTING = 64;

/// Looks no further than at brackets outside of texts: the parser's own hook for this goes through
/// the whole list at the end of each of its elements.
void CheckNesting(const std::string& text) {
  int depth = 0;
  bool inText = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char character = text[i];
    if (character == '"') inText = !inText;
    if (inText) {
      if (character == '\\') ++i;
    } else if (character == '[' || character == '{') {
      if (++depth > MAX_NESTING) throw DocumentError("nests deeper than any inventory");
    } else if (character == ']' || character == '}') {
      --depth;
    }
  }
}

std::string Masked(const std::string& text) {
  std::istringstream stream(text);
  Common::MaskedDocument masked(stream);
  return {std::istreambuf_iterator<char>(&masked), {}};
}

/// @param good the masked text before the wrong byte
[[noreturn]] void RefuseBehind(const std::string& good) {
  throw DocumentError("no JSON from byte " +
                      std::to_string(Common::MaskedDocument::Unmask(good).size() + 1));
}

template <class Value>
Value Parse(const std::string& text) {
  CheckNesting(text);
  const std::string masked = Masked(text);
  // The parser takes it for the end and passes over what follows.
  const std::size_t zero = masked.find('\0');
  if (zero != std::string::npos) RefuseBehind(masked.substr(0, zero));
  try {
    return Value::parse(masked);
  } catch (const Json::parse_error& error) {
    RefuseBehind(masked.substr(0, error.byte - 1));
  } catch (const Json::out_of_range&) {
    throw DocumentError("holds a number that is too large");
  }
}

template <class Value>
std::string Written(const Value& value, int indent) {
  return Common::MaskedDocument::Unmask(value.dump(indent));
}

template <class Action>
auto Naming(const std::string& name, Action action) {
  try {
    return action();
  } catch (const DocumentError& error) {
    throw DocumentError(name + ": " + error.what());
  }
}

}  // namespace

Document ParseDocument(const NamedText& document) {
  return {document.name, Naming(document.name, [&] { return Parse<Json>(document.text); })};
}

std::string TextOf(const Json& value) { return Written(value, -1); }

std::string Indented(const NamedText& document) {
  return Naming(document.name,
                [&] { return Written(Parse<nlohmann::ordered_json>(document.text), 2) + "\n"; });
}

void CheckDocument(const Document& document, void (*check)(const Json&)) {
  Naming(document.name, [&] { check(document.value); });
}

std::string Quoted(const std::string& key) { return '"' + key + '"'; }

}  // namespace Norvik::Documents
