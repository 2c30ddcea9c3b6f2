#include "cli/help/Examples.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace Norvik::Cli {

namespace {

struct Example {
  const char* command;
  const char* lines;
};

constexpr Example EXAMPLES[] = {
    {"inventory",
     "  norvik-agent inventory                        a full inventory, into the outbox\n"
     "  norvik-agent inventory --incremental          what has changed since the last one; full "
     "without one\n"
     "  norvik-agent --data DIR inventory             with a data folder of its own\n"},
    {"files",
     "  norvik-agent files                            all files with a wanted extension\n"
     "  norvik-agent files --incremental --json       what has changed since the last total one, "
     "as JSON\n"
     "  norvik-agent --config FILE files              with another configuration, this once\n"},
    {"explain",
     "  norvik-agent explain /Applications/Example.app\n"
     "  norvik-agent --config FILE explain /Users/anna/notes.txt   with another configuration\n"},
    {"why",
     "  norvik-agent why                              each section of the document, and the "
     "costliest\n"
     "  norvik-agent why displays.serial              one property\n"
     "  norvik-agent why bios --json                  for programs\n"},
    {"open",
     "  norvik-agent open outbox/mac-17.jsonkob       on one line, as the server gets it\n"
     "  norvik-agent open --pretty previous/mac-17.jsonkob\n"},
    {"show",
     "  norvik-agent show --list                      the sections, and how many records they "
     "have\n"
     "  norvik-agent show os disk                     these two as tables\n"
     "  norvik-agent show software --csv >software.csv\n"},
    {"history",
     "  norvik-agent history                          the documents that are kept\n"
     "  norvik-agent history --changes --since 7d     what has changed in a week\n"
     "  norvik-agent history --changes --section software --json\n"},
    {"view",
     "  norvik-agent view --open                      the last inventory of this machine\n"
     "  norvik-agent view full.json increment.json files.json --output mac.html\n"
     "  norvik-agent view --redact DIR/*.jsonkob      without personal data\n"},
    {"apply",
     "  norvik-agent apply full.json increment.json --output next.json   default: print it\n"},
    {"diff", "  norvik-agent diff monday.json friday.json     an incremental document, printed\n"},
    {"redact",
     "  norvik-agent redact previous/mac-17.jsonkob >mac.json\n"
     "  norvik-agent redact full.json increment.json --output DIR   that still belong together\n"},
    {"keys",
     "  norvik-agent keys make DIR                    the pair of a server; its server.pub is for "
     "agents\n"
     "  norvik-agent keys show                        the keys of this agent\n"
     "  norvik-agent keys show --keys DIR FILE        which key a sealed file needs\n"
     "  norvik-agent keys rotate DIR                  a new pair; the former one still opens "
     "files\n"},
    {"action",
     "  norvik-agent action 1011                      list the processes\n"
     "  norvik-agent action 1012 id=4711 --rehearse   what ending a process would do\n"
     "  norvik-agent action ACTION_LIST_FILES path=/Users --json\n"},
    {"actions", "  norvik-agent actions --json                   codes and names\n"},
    {"configure",
     "  norvik-agent configure --check FILE           check it, store nothing\n"
     "  norvik-agent configure FILE                   store and apply it\n"},
    {"doctor",
     "  norvik-agent doctor                           all checks\n"
     "  norvik-agent doctor server-trust              one of them\n"
     "  norvik-agent doctor --bundle support.zip      an archive for support\n"},
    {"status", "  norvik-agent status --json                    for programs\n"},
    {"record",
     "  norvik-agent record --redact mac-17           a recording for --machine, without personal "
     "data\n"},
    {"manual", "  norvik-agent manual | man -l -\n"},
    {"completion", "  norvik-agent completion bash >/etc/bash_completion.d/norvik-agent\n"},
    {"run",
     "  norvik-agent run                              in the foreground, as launchd and systemd "
     "want it\n"
     "  norvik-agent --data DIR --log-level 5 run     another service, with more in its log\n"},
    {"user", "  norvik-agent user                             what a user's session starts\n"},
    {"notify", "  norvik-agent notify software                  after an installation\n"},
    {"message", "  norvik-agent message \"Please restart today\"\n"},
};

}  // namespace

void AddExamples(CLI::App& program) {
  for (CLI::App* command : program.get_subcommands({})) {
    const auto* const found = std::find_if(
        std::begin(EXAMPLES), std::end(EXAMPLES),
        [&](const Example& example) { return example.command == command->get_name(); });
    const std::string examples =
        found == std::end(EXAMPLES) ? "" : std::string("Examples:\n") + found->lines + "\n";
    command->footer(examples + "The options before a command are in norvik-agent --help.");
  }
}

}  // namespace Norvik::Cli
