#include "cli/help/Examples.h"

#include <map>
#include <string>

namespace Norvik::Cli {

namespace {

/// By command: what is added to its help, each line below "Examples:".
const std::map<std::string, const char*>& Examples() {
  static const std::map<std::string, const char*> examples = {{"inventory", R"(
  norvik-agent inventory                        a full inventory, into the outbox
  norvik-agent inventory --incremental          what has changed since the last one; full without one
  norvik-agent --data DIR inventory             with a data folder of its own)"},
                                                              {"files", R"(
  norvik-agent files                            all files with a wanted extension
  norvik-agent files --incremental --json       what has changed since the last total one, as JSON
  norvik-agent --config FILE files              with another configuration, this once)"},
                                                              {"explain", R"(
  norvik-agent explain /Applications/Example.app
  norvik-agent --config FILE explain /Users/anna/notes.txt   with another configuration)"},
                                                              {"why", R"(
  norvik-agent why                              each section of the document, and the costliest
  norvik-agent why displays.serial              one property
  norvik-agent why bios --json                  for programs)"},
                                                              {"open", R"(
  norvik-agent open outbox/mac-17.jsonkob       on one line, as the server gets it
  norvik-agent open --pretty previous/mac-17.jsonkob)"},
                                                              {"show", R"(
  norvik-agent show --list                      the sections, and how many records they have
  norvik-agent show os disk                     these two as tables
  norvik-agent show software --csv >software.csv)"},
                                                              {"history", R"(
  norvik-agent history                          the documents that are kept
  norvik-agent history --changes --since 7d     what has changed in a week
  norvik-agent history --changes --section software --json)"},
                                                              {"apply", R"(
  norvik-agent apply full.json increment.json --output next.json   default: print it)"},
                                                              {"diff", R"(
  norvik-agent diff monday.json friday.json     an incremental document, printed)"},
                                                              {"redact", R"(
  norvik-agent redact previous/mac-17.jsonkob >mac.json
  norvik-agent redact full.json increment.json --output DIR   that still belong together)"},
                                                              {"action", R"(
  norvik-agent action 1011                      list the processes
  norvik-agent action 1012 id=4711 --rehearse   what ending a process would do
  norvik-agent action ACTION_LIST_FILES path=/Users --json)"},
                                                              {"actions", R"(
  norvik-agent actions --json                   codes and names)"},
                                                              {"configure", R"(
  norvik-agent configure --check FILE           check it, store nothing
  norvik-agent configure FILE                   store and apply it)"},
                                                              {"status", R"(
  norvik-agent status --json                    for programs)"},
                                                              {"record", R"(
  norvik-agent record --redact mac-17           a recording for --machine, without personal data)"},
                                                              {"manual", R"(
  norvik-agent manual | man -l -)"},
                                                              {"completion", R"(
  norvik-agent completion bash >/etc/bash_completion.d/norvik-agent)"},
                                                              {"run", R"(
  norvik-agent run                              in the foreground, as launchd and systemd want it
  norvik-agent --data DIR --log-level 5 run     another service, with more in its log)"},
                                                              {"user", R"(
  norvik-agent user                             what a user's session starts)"},
                                                              {"notify", R"(
  norvik-agent notify software                  after an installation)"},
                                                              {"message", R"(
  norvik-agent message "Please restart today")"}};
  return examples;
}

}  // namespace

void AddExamples(CLI::App& program) {
  for (CLI::App* command : program.get_subcommands({})) {
    const auto found = Examples().find(command->get_name());
    const std::string examples =
        found == Examples().end() ? "" : std::string("Examples:") + found->second + "\n\n";
    command->footer(examples + "The options before a command are in norvik-agent --help.");
  }
}

}  // namespace Norvik::Cli
