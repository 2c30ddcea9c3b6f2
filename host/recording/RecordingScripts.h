#pragma once

namespace Norvik::Host {

/// The texts of the scripts `answer` and `record-tool` beside this file. The build copies them into
/// the program.
extern const char* const ANSWER_SCRIPT;
extern const char* const RECORD_TOOL_SCRIPT;

}  // namespace Norvik::Host
