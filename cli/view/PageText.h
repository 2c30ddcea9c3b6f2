#pragma once

#include <string>
#include <string_view>

namespace Norvik::Cli {

/// Appends JSON so that it can be the content of a script element: no value can end the element.
/// "<", ">", "&", U+2028 and U+2029 become escapes of JSON, which occur in strings only. Each byte
/// that is no UTF-8 becomes the escape of its number, as in Latin-1, so the result is UTF-8.
void AppendForScript(std::string& out, std::string_view json);

/// A text in UTF-8 as the content of an HTML element, its control characters as "\\x1b".
std::string ForHtml(const std::string& text);

/// The source of a Content-Security-Policy that allows exactly this script or style:
/// "'sha256-...'".
std::string HashSource(const std::string& content);

/// "norvik-NAME.html" with the letters, digits, dots, dashes and underscores of a host's name; any
/// other character is "_". Short enough for every file system.
std::string PageNameOf(const std::string& host);

}  // namespace Norvik::Cli
