#include "cli/commands/CommandLine.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <boost/algorithm/string/join.hpp>

#include "cli/RecordedMachineOption.h"
#include "cli/help/Examples.h"
#include "cli/help/HelpPages.h"
#include "common/identification/HostInfoProvider.h"
#include "host/HostError.h"
#include "host/assembly/ModuleLoader.h"
#include "host/data/DataFolder.h"
#include "host/ipc/SocketPath.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

/// Options as CLI11 stores them.
struct Texts {
  std::string data;
  std::string configuration;
  std::string module;
  std::string machine;
  std::string socket;
  std::string file;
  std::string secondFile;
  std::string outputFile;
  std::string keys;
  std::string secretFile;
  std::string mapFile;
  std::string bundle;
  std::vector<std::string> files;
  std::string shell;
};

constexpr char FOOTER[] =
    R"(The data folder is, unless --data names another:
  on macOS   /Library/Application Support/Norvik for root,
             ~/Library/Application Support/Norvik for a user
  elsewhere  $XDG_STATE_HOME/norvik, or ~/.local/state/norvik without that variable
The socket of the service is /var/run/norvik/agent.sock for root, agent.sock in the data folder otherwise.
The exit code is 0 after success, 1 after a failure, 2 for wrong use, and 3 if `status` has found something
that needs a person.

Examples:
  norvik-agent inventory                       take an inventory into the outbox
  norvik-agent open --pretty FILE              read what it has written
  norvik-agent show software                   the software that the last inventory found
  norvik-agent history --changes --since 7d    what has changed in a week
  norvik-agent view --open                     the last inventory in the browser
  norvik-agent configure --check FILE          check a configuration, store nothing
  norvik-agent status --json                   the state of the agent, for programs
  norvik-agent action 1012 id=4711 --rehearse  what an action would do)";

std::string NotEmpty(const std::string& value) {
  return value.empty() ? "wants a text that is not empty" : "";
}

void AddGlobalOptions(CLI::App& program, CommandLine& line, Texts& texts) {
  program.add_option("--data", texts.data, "the data folder; see below for the default")
      ->check(NotEmpty)
      ->type_name("DIR");
  program.add_option("--config", texts.configuration, "use this configuration for one call")
      ->check(NotEmpty)
      ->type_name("FILE");
  program
      .add_option("--log-level", line.agent.logLevel,
                  "from 2 (errors) to 7 (everything); default: 4")
      ->check(CLI::Range(2, 7))
      ->type_name("N");
  program
      .add_option("--module", texts.module,
                  "the module to load; default: the one installed with this program")
      ->check(NotEmpty)
      ->type_name("FILE");
  program.add_option("--socket", texts.socket, "the socket of the running agent")
      ->check(NotEmpty)
      ->type_name("FILE");
  if (HasRecordedMachines()) {
    program.add_option("--machine", texts.machine, "have a recorded Mac stand for this machine")
        ->check(NotEmpty)
        ->type_name("FOLDER");
    program.add_flag("--really", line.really,
                     "with --machine: make changes, not only rehearse them");
  }
  program.add_flag("--user-process", line.agent.userProcess, "be the agent of a user");
  program.add_flag("--json", line.json, "answer in JSON");
}

struct Argument {
  const char* name;
  const char* meaning;
};

void AddKeysOption(CLI::App& command, Texts& texts) {
  command
      .add_option("--keys", texts.keys,
                  "the folder or file with the key that opens sealed documents")
      ->check(NotEmpty)
      ->type_name("PATH");
}

void AddDocumentCommand(CLI::App& program, Texts& texts, const std::string& name,
                        const Argument& first, const Argument& second) {
  const char* const meaning = name == "apply" ? "apply an incremental document to a full one"
                                              : "print what differs between two full documents";
  auto* command = program.add_subcommand(name, meaning);
  command->add_option(first.name, texts.file, first.meaning)->required()->check(NotEmpty);
  command->add_option(second.name, texts.secondFile, second.meaning)->required()->check(NotEmpty);
  command->add_option("--output", texts.outputFile, "write the document to this file")
      ->check(NotEmpty)
      ->type_name("FILE");
  AddKeysOption(*command, texts);
}

void AddCommandsThatShowDocuments(CLI::App& program, CommandLine& line, Texts& texts) {
  auto* show = program.add_subcommand("show", "show sections of the last inventory");
  show->add_option("SECTIONS", line.sections, "keys of the document; default: all");
  auto* list = show->add_flag("--list", line.list, "list the sections and count their records");
  auto* live = show->add_flag("--live", line.live, "take a new inventory, which is not kept");
  show->add_flag("--csv", line.csv, "print one section as comma-separated values")->excludes(list);
  show->add_option("--file", texts.file, "show this document, sealed or plain")
      ->check(NotEmpty)
      ->type_name("FILE")
      ->excludes(live);
  AddKeysOption(*show, texts);

  auto* history = program.add_subcommand("history", "list the documents that were made");
  auto* changes = history->add_flag("--changes", line.changes, "tell what changed, and when");
  history->add_option("--section", line.sections, "only changes of this section")
      ->check(NotEmpty)
      ->type_name("KEY")
      ->expected(1)
      ->needs(changes);
  history
      ->add_option("--since", line.since,
                   "2026-01-31, 2026-01-31T12:00:00Z, 7d or 12h; default: all")
      ->check(NotEmpty)
      ->type_name("TIME");
  AddKeysOption(*history, texts);
}

void AddRedactCommand(CLI::App& program, Texts& texts) {
  auto* redact = program.add_subcommand("redact", "print documents without personal data");
  redact->add_option("FILES", texts.files, "documents of either inventory, plain or sealed")
      ->required()
      ->check(NotEmpty);
  redact->add_option("--output", texts.outputFile, "write to this file, or into this folder")
      ->check(NotEmpty)
      ->type_name("PATH");
  redact
      ->add_option("--secret-file", texts.secretFile,
                   "make stand-ins with the secret in this file; it is created if missing")
      ->check(NotEmpty)
      ->type_name("FILE");
  redact->add_option("--map", texts.mapFile, "write the stand-ins and their values to this file")
      ->check(NotEmpty)
      ->type_name("FILE");
}

void AddViewCommand(CLI::App& program, CommandLine& line, Texts& texts) {
  auto* view = program.add_subcommand("view", "write a page that shows inventories in a browser");
  view->add_option("FILES", texts.files,
                   "documents of one machine, plain or sealed; default: the last inventory")
      ->check(NotEmpty);
  view->add_option("--output", texts.outputFile, "the page; default: norvik-HOST.html, here")
      ->check(NotEmpty)
      ->type_name("PAGE");
  view->add_flag("--open", line.openPage, "open the page in the browser");
  view->add_flag("--redact", line.redact, "show it without personal data");
  AddKeysOption(*view, texts);
}

void AddKeysCommand(CLI::App& program, CommandLine& line, Texts& texts) {
  auto* keys = program.add_subcommand("keys", "make, show or rotate the keys of sealed documents");
  keys->add_option("WHAT", line.what, "make, show or rotate")->required()->check(NotEmpty);
  keys->add_option("PATHS", texts.files,
                   "the server's folder; for show: folders, key files, sealed files; default: the "
                   "keys of the data folder")
      ->check(NotEmpty);
  AddKeysOption(*keys, texts);
}

void AddCommands(CLI::App& program, CommandLine& line, Texts& texts) {
  auto* inventory = program.add_subcommand("inventory", "take an inventory of this machine");
  inventory->add_flag("--incremental", line.incremental, "report only what has changed");

  auto* files = program.add_subcommand("files", "take an inventory of the files of this machine");
  files->add_flag("--incremental", line.incremental, "report only what has changed");
  files->add_flag("--scheduled", line.scheduled, "as a schedule would: at most once a day");

  auto* explain = program.add_subcommand("explain", "say whether a file inventory lists a path");
  explain->add_option("PATH", texts.file, "the path to look at")->required()->check(NotEmpty);

  auto* why = program.add_subcommand("why", "say where a part of the document comes from");
  why->add_option("KEY", line.what, "a section, or a property as displays.serial; default: all")
      ->check(NotEmpty);

  auto* open = program.add_subcommand("open", "print the document in an outbox file");
  open->add_option("FILE", texts.file, "the outbox file")->required()->check(NotEmpty);
  open->add_flag("--pretty", line.pretty, "indent the document");
  AddKeysOption(*open, texts);

  AddDocumentCommand(program, texts, "apply", {"FULL", "the full document"},
                     {"INCREMENTAL", "what has changed since"});
  AddDocumentCommand(program, texts, "diff", {"OLD", "a full document"},
                     {"NEW", "the one to compare with it"});
  AddCommandsThatShowDocuments(program, line, texts);
  AddViewCommand(program, line, texts);
  AddRedactCommand(program, texts);
  AddKeysCommand(program, line, texts);

  auto* action = program.add_subcommand("action", "run one action and print its response");
  action->add_option("ACTION", line.action, "code or name of the action")->required();
  action->add_option("PARAMETERS", line.parameters,
                     "key=value, key:bool=true or key:u64=123, any number");
  action->add_flag("--rehearse", line.rehearse, "only report what the action would do");

  program.add_subcommand("actions", "list the actions of the module");

  auto* configure = program.add_subcommand("configure", "check, store and apply a configuration");
  configure->add_option("FILE", texts.file, "the configuration file")->required()->check(NotEmpty);
  configure->add_flag("--check", line.check, "only report what in it will surprise");

  program.add_subcommand("status", "print the state of the agent");

  auto* doctor = program.add_subcommand("doctor", "look for what makes an agent fail in silence");
  doctor->add_option("CHECK", line.what, "run only this check")->check(NotEmpty);
  doctor->add_flag("--list", line.list, "list the checks");
  doctor
      ->add_option("--bundle", texts.bundle, "write an archive for support, without personal data")
      ->check(NotEmpty)
      ->type_name("FILE");

  auto* record = program.add_subcommand("record", "record what an inventory asks this machine for");
  record->add_option("FOLDER", texts.file, "the folder to make")->required()->check(NotEmpty);
  record->add_flag("--redact", line.redact, "replace serial numbers, names and addresses");

  program.add_subcommand("manual", "print the manual page of this program, for man");
  auto* completion = program.add_subcommand("completion", "print a shell's completions");
  completion->add_option("SHELL", texts.shell, "bash, zsh or fish")
      ->required()
      ->check(CLI::IsMember({"bash", "zsh", "fish"}));
}

void AddCommandsOfRunningAgents(CLI::App& program, CommandLine& line) {
  program.add_subcommand("run", "be the service of this machine until a signal ends it");
  program.add_subcommand("user", "be the process of a logged-on user until a signal ends it");
  auto* notify = program.add_subcommand("notify", "inform the running agent of a change");
  notify->add_option("WHAT", line.what, "software or hardware")
      ->required()
      ->check(CLI::IsMember({"software", "hardware"}));
  auto* message = program.add_subcommand("message", "show a text to the logged-on users");
  message->add_option("TEXT", line.text, "the text")->required()->check(NotEmpty);
}

/// The socket of the machine's service is in a fixed place where every user finds it; that of any
/// other agent is in its data folder.
boost::filesystem::path DefaultSocket(const CommandLine& line) {
  const bool ofSystem = line.command == "user" || (!line.dataFolderGiven && ::geteuid() == 0);
  return ofSystem ? SYSTEM_SOCKET : line.agent.dataFolder / SOCKET_FILE;
}

/// A user may also run a service, so the two have different folders.
boost::filesystem::path DefaultFolderOf(const std::string& command) {
  const boost::filesystem::path folder = DefaultDataFolder();
  return command == "user" ? folder.string() + "-user" : folder;
}

void ApplyOptions(const Texts& texts, CommandLine& line) {
  line.dataFolderGiven = !texts.data.empty();
  line.agent.dataFolder = line.dataFolderGiven ? texts.data : DefaultFolderOf(line.command);
  line.socket = texts.socket.empty() ? DefaultSocket(line) : texts.socket;
  if (line.command == "user") line.agent.userProcess = true;
  if (line.command == "run" && line.agent.userProcess) {
    throw UsageError("--user-process does not go with run; the command for it is user");
  }
  line.agent.configurationFile = texts.configuration;
  line.agent.moduleFile = texts.module.empty() ? DefaultModuleFile() : texts.module;
  line.machine = texts.machine;
  if (line.really && line.machine.empty()) throw UsageError("--really goes with --machine only");
  line.file = texts.file;
  line.secondFile = texts.secondFile;
  line.outputFile = texts.outputFile;
  line.keyFolder = texts.keys;
  line.secretFile = texts.secretFile;
  line.mapFile = texts.mapFile;
  line.bundle = texts.bundle;
  line.files.assign(texts.files.begin(), texts.files.end());
}

/// CLI11 reverses the order of unknown arguments, does not report them if something is missing as
/// well, and does not list the commands if one is missing or unknown.
std::string TextOf(const CLI::ParseError& error, const CLI::App& program) {
  if (!program.get_subcommands().empty()) {
    const std::string unexpected = boost::join(program.remaining(true), " ");
    return unexpected.empty() ? error.what() : "unexpected: " + unexpected;
  }
  if (!dynamic_cast<const CLI::RequiredError*>(&error)) return error.what();
  std::string names;
  for (const CLI::App* command : program.get_subcommands([](const CLI::App*) { return true; })) {
    names += (names.empty() ? "" : ", ") + command->get_name();
  }
  const auto unknown = program.remaining();
  return (unknown.empty() ? "a command is wanted" : "unknown command " + unknown.front()) +
         "; the commands are " + names;
}

}  // namespace

CommandLine ParseCommandLine(const std::vector<std::string>& arguments) {
  CommandLine line;
  Texts texts;
  CLI::App program("Inventory and remote administration of this machine", "norvik-agent");
  program.footer(FOOTER);
  program.set_version_flag("--version", Common::GetAgentVersion());
  program.require_subcommand(1);
  program.fallthrough();
  AddGlobalOptions(program, line, texts);
  AddCommands(program, line, texts);
  AddCommandsOfRunningAgents(program, line);
  AddExamples(program);

  // CLI11 reads them from the back.
  std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
  if (!reversed.empty()) reversed.pop_back();
  try {
    program.parse(reversed);
  } catch (const CLI::CallForHelp&) {
    line.help = program.help();
    return line;
  } catch (const CLI::CallForVersion&) {
    line.help = program.version() + "\n";
    return line;
  } catch (const CLI::ParseError& error) {
    throw UsageError(TextOf(error, program));
  }
  line.command = program.get_subcommands().front()->get_name();
  if (line.command == "manual" || line.command == "completion") {
    line.help = texts.shell.empty() ? ManualOf(program) : CompletionsOf(program, texts.shell);
    line.command.clear();
    return line;
  }
  for (const char* name : {"--config", "--log-level", "--machine", "--module", "--user-process"}) {
    const CLI::Option* const option = program.get_option_no_throw(name);
    if (option && option->count() > 0) line.ownOptions.emplace_back(name);
  }
  ApplyOptions(texts, line);
  return line;
}

}  // namespace Norvik::Cli
