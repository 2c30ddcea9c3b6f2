#pragma once

#include <string>

namespace Norvik::Cli {

/// The content of web/dist/viewer.js and viewer.css, as they were when the program was built. It
/// cannot end its element, and has no line end but LF, so a browser sees the same bytes.
std::string ViewerScript();
std::string ViewerStyle();

}  // namespace Norvik::Cli
