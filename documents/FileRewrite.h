#pragma once

#include <functional>

#include "documents/DocumentText.h"

namespace Norvik::Documents {

/// May change a folder and a record of a file in it.
using RewriteFile = std::function<void(std::string& folder, Json& file)>;

/// A document of the file inventory, total or incremental, with other files. The result lists
/// folders and files in the order of `ApplyToFiles` and `FileDifference`. Never holds the parsed
/// document: the memory is about eight times the text. Throws `DocumentError` if the text is no
/// such document.
/// @param rewriteRest gets the document without its files
std::string RewriteFileDocument(const NamedText& document, const RewriteFile& rewriteFile,
                                const std::function<void(Json&)>& rewriteRest);

}  // namespace Norvik::Documents
