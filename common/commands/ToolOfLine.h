#pragma once

#include <string>

#include "common/Api.h"

namespace Norvik::Common {

// What a line for the shell asks, as the collectors write such lines: perhaps the removal of a
// file, then the tool and its arguments, then filters or a file for the output. Nothing throws.

/// "diskutil info -plist /dev/disk1" of "rm /tmp/x;diskutil info -plist /dev/disk1 > /tmp/x".
NORVIK_COMMON_API std::string QuestionOfLine(const std::string& line);
/// The first word of the question: "diskutil".
NORVIK_COMMON_API std::string ToolOfLine(const std::string& line);

/// The path of a program that PATH finds; empty if it finds no program that this process may run.
/// @param name without "/"
NORVIK_COMMON_API std::string FindProgram(const std::string& name);

}  // namespace Norvik::Common
