#include "documents/DocumentText.h"

#include <cstddef>
#include <iterator>
#include <sstream>

#include "common/text/MaskedDocument.h"
#include "documents/DocumentError.h"
#include "json/BoundedReader.h"

namespace Norvik::Documents {

namespace {

/// Values are written by recursion: hostile text must not exhaust the stack.
constexpr std::size_t MAX_NESTING = 64;

std::string Masked(const std::string& text) {
  std::istringstream stream(text);
  Common::MaskedDocument masked(stream);
  return {std::istreambuf_iterator<char>(&masked), {}};
}

std::string MessageOf(const json::ReadError& error, const std::string& masked) {
  using Reason = json::ReadError::Reason;
  if (error.reason == Reason::NestsTooDeep) return "nests deeper than any inventory";
  if (error.reason == Reason::NumberTooLarge) return "holds a number that is too large";
  // Counted in the document, which the masked text is longer than.
  const std::string good = Common::MaskedDocument::Unmask(masked.substr(0, error.byte - 1));
  return "no JSON from byte " + std::to_string(good.size() + 1);
}

template <class Value>
Value Parse(const std::string& text) {
  const std::string masked = Masked(text);
  try {
    return json::ReadBounded<Value>(masked, MAX_NESTING);
  } catch (const json::ReadError& error) {
    throw DocumentError(MessageOf(error, masked));
  }
}

template <class Value>
std::string Written(const Value& value, int indent) {
  return Common::MaskedDocument::Unmask(value.dump(indent));
}

/// Runs an action; the text of a `DocumentError` from it then begins with the document's name.
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
