#pragma once

#include <functional>
#include <string>

#include "documents/DocumentText.h"

namespace Norvik::Documents {

/// Whether the text is meant as a document of the file inventory. Looks for its key only: such a
/// document may be too large to be parsed as a whole. In the text of a value the quotes would be
/// escaped.
bool IsFileDocumentText(const std::string& text);

/// Gets a checked folder with its files, and may take them.
using TakeFolder = std::function<void(Json& folder)>;

/// Reads a document of the file inventory, total or incremental, folder by folder, and returns it
/// without its folders. Never holds the parsed document. Throws `DocumentError` if the text is no
/// such document; `take` may have got folders then.
Document ReadFileDocument(const NamedText& document, const TakeFolder& take);

}  // namespace Norvik::Documents
