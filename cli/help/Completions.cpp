#include <CLI/CLI.hpp>
#include <boost/algorithm/string/join.hpp>
#include <boost/algorithm/string/replace.hpp>
#include <map>
#include <vector>

#include "cli/help/HelpPages.h"

namespace Norvik::Cli {

namespace {

using TextList = std::vector<std::string>;
using Options = std::vector<const CLI::Option*>;

/// In single quotes of a POSIX shell.
std::string Quoted(std::string text) {
  boost::replace_all(text, "'", "'\\''");
  return "'" + text + "'";
}

/// The options of a command, or the global ones.
Options OptionsOf(const CLI::App& app) {
  return app.get_options([](const CLI::Option* option) { return !option->get_positional(); });
}

/// "--data"
std::string NameOf(const CLI::Option& option) { return "--" + option.get_lnames().front(); }

bool HasValue(const CLI::Option& option) { return option.get_items_expected_max() > 0; }

std::string NamesOf(const CLI::App& app) {
  TextList names;
  for (const CLI::Option* option : OptionsOf(app)) names.push_back(NameOf(*option));
  return boost::join(names, " ");
}

std::string CommandNames(const CLI::App& program, const char* separator) {
  TextList names;
  for (const CLI::App* command : program.get_subcommands({})) names.push_back(command->get_name());
  return boost::join(names, separator);
}

/// Works in bash 3.2, the one of macOS. What has no word is completed as a file.
std::string Bash(const CLI::App& program) {
  std::string text = R"(_norvik_agent() {
  local word="${COMP_WORDS[COMP_CWORD]}" command="" each words
  for each in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    case "$each" in
      )" + CommandNames(program, " | ") +
                     R"() command="$each"; break ;;
    esac
  done
  words=)" + Quoted(NamesOf(program)) +
                     R"(
  case "$command" in
    '') words="$words )" +
                     CommandNames(program, " ") + "\" ;;\n";
  for (const CLI::App* command : program.get_subcommands({})) {
    text += "    " + command->get_name() + ") words=\"$words " + NamesOf(*command) + "\" ;;\n";
  }
  return text + R"(  esac
  COMPREPLY=()
  while IFS= read -r each; do COMPREPLY+=("$each"); done < <(compgen -W "$words" -- "$word")
}
complete -o default -F _norvik_agent norvik-agent
)";
}

/// One option for _arguments: '--data[the data folder]:DIR:_files'
std::string ZshOption(const CLI::Option& option) {
  std::string meaning = option.get_description();
  for (const char* special : {"\\", "[", "]", ":"})
    boost::replace_all(meaning, special, std::string("\\") + special);
  const std::string value = HasValue(option) ? ":" + ValueNameOf(option) + ":_files" : "";
  return " \\\n    " + Quoted(NameOf(option) + "[" + meaning + "]" + value);
}

std::string Zsh(const CLI::App& program) {
  std::string commands, cases, global;
  for (const CLI::Option* option : OptionsOf(program)) global += ZshOption(*option);
  for (const CLI::App* command : program.get_subcommands({})) {
    commands += " \\\n    " + Quoted(command->get_name() + ":" + command->get_description());
    cases += "  " + command->get_name() + ") _arguments";
    for (const CLI::Option* option : OptionsOf(*command)) cases += ZshOption(*option);
    cases += " \\\n    '*: :_files' ;;\n";
  }
  return "#compdef norvik-agent\nlocal state\nlocal -a commands\ncommands=(" + commands +
         ")\n_arguments -C" + global +
         " \\\n    '1: :->command' '*:: :->argument'\n"
         "[ \"$state\" != command ] || _describe command commands\n"
         "[ \"$state\" = argument ] || return\ncase \"$words[1]\" in\n" +
         cases + "esac\n";
}

std::string FishOption(const CLI::Option& option, const std::string& condition) {
  std::string meaning = option.get_description();
  boost::replace_all(meaning, "\\", "\\\\");
  boost::replace_all(meaning, "'", "\\'");
  return "complete -c norvik-agent" + condition + " -l " + option.get_lnames().front() +
         (HasValue(option) ? " -r" : "") + " -d '" + meaning + "'\n";
}

std::string Fish(const CLI::App& program) {
  std::string text;
  for (const CLI::Option* option : OptionsOf(program)) text += FishOption(*option, "");
  for (const CLI::App* command : program.get_subcommands({})) {
    std::string meaning = command->get_description();
    boost::replace_all(meaning, "'", "\\'");
    text += "complete -c norvik-agent -f -n __fish_use_subcommand -a " + command->get_name() +
            " -d '" + meaning + "'\n";
    for (const CLI::Option* option : OptionsOf(*command)) {
      text += FishOption(*option, " -n '__fish_seen_subcommand_from " + command->get_name() + "'");
    }
  }
  return text;
}

}  // namespace

std::string CompletionsOf(const CLI::App& program, const std::string& shell) {
  static const std::map<std::string, std::string (*)(const CLI::App&)> shells = {
      {"bash", Bash}, {"zsh", Zsh}, {"fish", Fish}};
  return shells.at(shell)(program);
}

}  // namespace Norvik::Cli
