#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace Norvik::Documents {

using Json = nlohmann::json;

/// The text of a document, and the name that error messages give it.
struct NamedText {
  std::string name;
  std::string text;
};

/// A parsed document. In its texts, bytes that a strict parser refuses are masked, see
/// `Common::MaskedDocument`.
struct Document {
  std::string name;
  Json value;
};

/// What becomes of the escape of a byte that is no UTF-8, such as "\u00e9": the character of that
/// number, as for an agent that reads the document, or what was written.
enum class Escapes { Read, Kept };

/// Throws `DocumentError` if the text is no JSON, holds a number beyond a double, or nests deeper
/// than any inventory does.
Document ParseDocument(const NamedText& document, Escapes escapes = Escapes::Read);

/// The same, without what `watch` drops, see the parser. What it throws passes through.
Document ParseDocument(const NamedText& document, Json::parser_callback_t watch);

/// A value of a parsed document as JSON on one line, as an agent writes it.
std::string TextOf(const Json& value);

/// The document indented, one line per value, with the keys of each object in their original order.
/// Throws what `ParseDocument` throws.
std::string Indented(const NamedText& document);

/// Runs a check that throws `DocumentError`; the error's text then begins with the document's name.
void CheckDocument(const Document& document, void (*check)(const Json&));

/// A key or a value as error messages show it: in double quotes.
std::string Quoted(const std::string& key);

}  // namespace Norvik::Documents
