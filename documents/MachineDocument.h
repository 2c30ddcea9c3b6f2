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

// Readers of the machine inventory's documents. Each raises `DocumentError` for a text that is not
// of its kind. Keys that are not known are kept, since a later version may write them.

/// A full document: an object with every section, each of its kind.
Json ReadFullDocument(const NamedText& document);

/// An incremental document: null, or an object with "create", "delete", "device" and "update".
Json ReadIncrementalDocument(const NamedText& document);

}  // namespace Norvik::Documents
