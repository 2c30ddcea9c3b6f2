#include "receiver/commands/Program.h"

#include <CLI/CLI.hpp>
#include <iostream>

#include "common/files/KeyFile.h"
#include "receiver/commands/Commands.h"
#include "receiver/search/Expression.h"

namespace Norvik::Receiver {

namespace {

/// The values that the command line sets.
struct Options {
  Place place;
  RunOptions run;
  ApproveOptions approve;
  SecretOptions secret;
  AccountOptions account;
  TaskOptions task;
  SearchOptions search;
  ExportOptions exported;
  std::string keysAction, keysFolder, agent;
};

/// An action as the first word after a command.
void AddAction(CLI::App& command, std::string& action, const std::vector<std::string>& names) {
  command.add_option("ACTION", action)->required()->check(CLI::IsMember(names));
}

void AddWorkerOptions(CLI::App& command, RunOptions& run) {
  command.add_option("--keys", run.keys, "folder of the private keys; default: keys in the data");
  command.add_option("--workers", run.workers, "threads that take documents, with PostgreSQL")
      ->check(CLI::Range(1, 64))
      ->capture_default_str();
  command.add_flag("--keep-files", run.keepsFiles, "keep files whose document is stored");
}

void AddRun(CLI::App& command, Options& options) {
  RunOptions& run = options.run;
  command.add_option("--address", run.server.address, "to listen at")->capture_default_str();
  command.add_option("--port", run.server.port, "to listen at; 0: any")->capture_default_str();
  command.add_option("--certificate", run.server.certificate, "of this server, a PEM file");
  command.add_option("--certificate-key", run.server.certificateKey, "its private key, a PEM file");
  command.add_flag("--plain", run.isPlain, "HTTP without TLS, at a loopback address");
  command.add_flag("--behind-proxy", run.isBehindProxy, "--plain at any address");
  command.add_option("--handlers", run.server.handlers, "threads that handle requests")
      ->check(CLI::Range(1, 256))
      ->capture_default_str();
  command.add_option("--connections", run.server.connections, "that may be open at a time")
      ->check(CLI::Range(1, 1000000))
      ->capture_default_str();
  command.add_flag("!--no-workers", run.hasWorkers, "only receive; `work` does the rest");
  AddWorkerOptions(command, run);
}

void AddSecret(CLI::App& command, Options& options) {
  AddAction(command, options.secret.action, {"make", "list", "revoke"});
  command.add_option("NAME", options.secret.name, "of the secret");
  command.add_option("--days", options.secret.days, "until it expires; 0: never")
      ->check(CLI::Range(0, 36500))
      ->capture_default_str();
  command.add_option("--uses", options.secret.uses, "agents that it lets in; default: any number")
      ->check(CLI::PositiveNumber);
  command.add_option("--serial", options.secret.serialNumbers, "serial numbers that it is for");
}

void AddTask(CLI::App& command, Options& options) {
  TaskOptions& task = options.task;
  AddAction(command, task.action, {"add", "list", "show", "cancel"});
  command.add_option("PARAMETER", task.parameters, "NAME=VALUE or NAME:TYPE=VALUE");
  command.add_option("--agent", task.agent, "identifier of the agent");
  command.add_option("--search", task.search, "all machines that this expression finds");
  command.add_option("--machines", task.machines, "how many the expression must find");
  command.add_option("--code", task.code, "of the action");
  command.add_option("--name", task.name, "of the task");
  command.add_option("--period", task.period, "in seconds; 0: once")
      ->check(CLI::Range(0, 315360000));
  command.add_option("--next", task.next, "first time, in seconds since 1970; 0: at once")
      ->check(CLI::NonNegativeNumber);
  command.add_option("--task", task.task, "identifier of the task, to show or cancel");
}

struct CommandLine {
  const char* name;
  const char* description;
  void (*add)(CLI::App&, Options&);
  int (*run)(const Options&);
};

const CommandLine COMMANDS[] = {
    {"run", "Receive from agents, and work on what they send", AddRun,
     [](const Options& o) { return RunServer(o.place, o.run); }},
    {"work", "Work on what agents have sent, without receiving",
     [](CLI::App& command, Options& o) { AddWorkerOptions(command, o.run); },
     [](const Options& o) { return RunWorkers(o.place, o.run); }},
    {"keys", "Make or list the keys that documents are sealed to",
     [](CLI::App& command, Options& o) {
       AddAction(command, o.keysAction, {"make", "list"});
       command.add_option("FOLDER", o.keysFolder, "of the keys; default: keys in the data");
     },
     [](const Options& o) { return MakeOrListKeys(o.place, o.keysAction, o.keysFolder); }},
    {"secret", "Make, list or revoke secrets that enrol agents", AddSecret,
     [](const Options& o) { return ChangeSecrets(o.place, o.secret); }},
    {"approve", "Let agents in; without one, list those that wait or were refused",
     [](CLI::App& command, Options& o) {
       command.add_option("AGENT", o.approve.agents, "identifiers of agents");
       command.add_flag("--refuse", o.approve.refuses, "refuse them, or shut them out");
       command.add_flag("--accept-token", o.approve.acceptsToken,
                        "let in who came last with another token");
     },
     [](const Options& o) { return Approve(o.place, o.approve); }},
    {"account", "Add, list or remove accounts of people; `add` reads the password from a line",
     [](CLI::App& command, Options& o) {
       AddAction(command, o.account.action, {"add", "list", "remove"});
       command.add_option("NAME", o.account.name, "of the account");
       command.add_option("--role", o.account.role, "what it may do")
           ->check(CLI::IsMember({"look", "operate", "administer"}))
           ->capture_default_str();
     },
     [](const Options& o) { return ChangeAccounts(o.place, o.account); }},
    {"task", "Give machines tasks, list, show or cancel them", AddTask,
     [](const Options& o) { return ChangeTasks(o.place, o.task); }},
    {"search", "Find machines by what their documents say",
     [](CLI::App& command, Options& o) {
       command
           .add_option("EXPRESSION", o.search.expression,
                       "as: software.name ~ \"fire\" and software.version < 120")
           ->required();
       command.add_option("--limit", o.search.limit, "machines at most")
           ->check(CLI::Range(1, 1000000))
           ->capture_default_str();
       command.add_flag("--count", o.search.counts, "only how many");
     },
     [](const Options& o) { return Search(o.place, o.search); }},
    {"export", "Print changes as JSON, one a line",
     [](CLI::App& command, Options& o) {
       command.add_option("--since", o.exported.since, "the cursor of the last line that you have");
       command.add_option("--limit", o.exported.limit, "lines at most")->check(CLI::PositiveNumber);
     },
     [](const Options& o) { return Export(o.place, o.exported); }},
    {"aside", "List files that could not be used, with the reason",
     [](CLI::App& command, Options& o) { command.add_option("AGENT", o.agent, "only its files"); },
     [](const Options& o) { return ListAside(o.place, o.agent); }},
    {"check", "Examine the database and the files", [](CLI::App&, Options&) {},
     [](const Options& o) { return Check(o.place); }},
};

/// On one line, whatever the reason is made of.
int Fail(int status, std::string reason) {
  for (char& c : reason) {
    if (static_cast<unsigned char>(c) < ' ') c = ' ';
  }
  std::cerr << "norvik-receiver: " << reason << std::endl;
  return status;
}

}  // namespace

int RunProgram(int argc, char** argv) {
  Options options;
  CLI::App app("The other end of norvik-agent: receives, stores and searches", "norvik-receiver");
  app.require_subcommand(1);
  app.fallthrough();
  app.add_option("--data", options.place.data, "folder of the data")->capture_default_str();
  app.add_option("--database", options.place.database,
                 "postgresql://...; default: a file in the data folder")
      ->envname("NORVIK_RECEIVER_DATABASE");
  app.add_flag("--json", options.place.json, "print JSON, an object a line");
  int status = 0;
  for (const CommandLine& command : COMMANDS) {
    CLI::App* const added = app.add_subcommand(command.name, command.description);
    command.add(*added, options);
    added->callback([&status, &command, &options] { status = command.run(options); });
  }
  try {
    Common::PrepareEncryption();
    app.parse(argc, argv);
    return status;
  } catch (const CLI::Success& success) {
    return app.exit(success);
  } catch (const CLI::ParseError& error) {
    return Fail(2, error.what());
  } catch (const UsageError& error) {
    return Fail(2, error.what());
  } catch (const ExpressionError& error) {
    return Fail(2, error.what());
  } catch (const std::exception& error) {
    return Fail(1, error.what());
  }
}

}  // namespace Norvik::Receiver
