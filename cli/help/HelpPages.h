#pragma once

#include <string>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace Norvik::Cli {

// Pages made from the definitions that --help prints.

/// The manual page of the program, for man.
std::string ManualOf(const CLI::App& program);

/// The script that completes command lines in a shell.
/// @param shell "bash", "zsh" or "fish"
std::string CompletionsOf(const CLI::App& program, const std::string& shell);

/// "FILE": the name of an option's value, without what checks add to it.
std::string ValueNameOf(const CLI::Option& option);

}  // namespace Norvik::Cli
