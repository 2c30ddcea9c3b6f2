#include "documents/DocumentText.h"

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

Json Parse(const std::string& text) {
  CheckNesting(text);
  try {
    return Json::parse(text);
  } catch (const Json::exception& error) {
    // The parser quotes the token it failed at, however long that is.
    throw DocumentError("not JSON: " + std::string(error.what()).substr(0, 200));
  }
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
  return {document.name, Naming(document.name, [&] { return Parse(document.text); })};
}

void CheckDocument(const Document& document, void (*check)(const Json&)) {
  Naming(document.name, [&] { check(document.value); });
}

std::string Quoted(const std::string& key) { return '"' + key + '"'; }

}  // namespace Norvik::Documents
