#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace Norvik::Documents {

using Json = nlohmann::json;

/// The text of a document, and what to call it when something is wrong with it.
struct NamedText {
  std::string name;
  std::string text;
};

/// What is in the text. Bytes that no strict reader takes are masked in its texts, see
/// `Common::MaskedDocument`.
struct Document {
  std::string name;
  Json value;
};

/// Raises `DocumentError` for what is no JSON, or is nested deeper than any inventory.
Document ParseDocument(const NamedText& document);

/// A value of a document as text, with the bytes that it came with.
std::string TextOf(const Json& value);

/// The document with a line for each value, each object's keys in their order. Raises as
/// `ParseDocument` does.
std::string Indented(const NamedText& document);

/// Runs a check that raises `DocumentError`; its text then begins with the document's name.
void CheckDocument(const Document& document, void (*check)(const Json&));

/// A key or a value as the texts of errors show it.
std::string Quoted(const std::string& key);

}  // namespace Norvik::Documents
