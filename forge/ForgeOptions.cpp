#include "forge/ForgeOptions.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <ctime>

namespace Norvik::Forge {

namespace {

std::string NotEmpty(const std::string& value) {
  return value.empty() ? "wants a text that is not empty" : "";
}

/// Midnight of a day in UTC, in seconds since the epoch; -1 if the text is no day.
std::int64_t DayOf(const std::string& text) {
  std::tm day{};
  int length = 0;
  if (std::sscanf(text.c_str(), "%4d-%2d-%2d%n", &day.tm_year, &day.tm_mon, &day.tm_mday,
                  &length) != 3 ||
      length != 10 || text.size() != 10) {
    return -1;
  }
  day.tm_year -= 1900;
  day.tm_mon -= 1;
  std::tm normal = day;
  const std::time_t time = timegm(&normal);
  return normal.tm_mday == day.tm_mday && normal.tm_mon == day.tm_mon ? time : -1;
}

std::string IsDay(const std::string& text) {
  return DayOf(text) < 0 ? "wants a day such as 2026-01-31, not " + text : "";
}

void AddFleetOptions(CLI::App& command, FleetOptions& fleet, std::string& start) {
  command.add_option("--macs", fleet.macs, "how many Macs")
      ->required()
      ->check(CLI::Range(1, 10'000'000))
      ->type_name("N");
  command
      .add_option("--days", fleet.days, "over how many days; default: 1, so full documents only")
      ->check(CLI::Range(1, 3660))
      ->type_name("M");
  command.add_option("--seed", fleet.seed, "another number makes another fleet; default: 1")
      ->type_name("S");
  command.add_option("--first", fleet.first, "number of the first Mac; default: 1")
      ->check(CLI::Range(1, 10'000'000))
      ->type_name("K");
  command.add_option("--files", fleet.files, "so many files on each Mac, with their inventories")
      ->check(CLI::Range(1, 10'000'000))
      ->type_name("N");
  command.add_option("--start", start, "the first day, in UTC; default: 2026-01-05")
      ->check(IsDay)
      ->type_name("DAY");
}

std::string IsServer(const std::string& text) {
  const bool valid = text.rfind("https://", 0) == 0 && text.size() > 8 && text[8] != '/' &&
                     text.find_first_of("/ ?#", 8) == text.npos;
  return valid ? "" : "wants an address such as https://mac-server.test:8443, not " + text;
}

void AddAgents(CLI::App& program, AgentsOptions& agents, std::string& start) {
  CLI::App& command = *program.add_subcommand(
      "agents", "enrol the Macs with a server, send it their documents, answer its tasks");
  AddFleetOptions(command, agents.fleet, start);
  const auto text = [&](const char* name, std::string& value, const char* help, const char* type) {
    return command.add_option(name, value, help)->check(NotEmpty)->type_name(type);
  };
  const auto seconds = [&](const char* name, double& value, const char* help, const char* type) {
    command.add_option(name, value, help)->check(CLI::Range(0.001, 1e6))->type_name(type);
  };
  text("--server", agents.server, "its address, such as https://mac-server.test:8443", "URL")
      ->required()
      ->check(IsServer);
  text("--ca", agents.caFile, "the authorities that may have issued its certificate, PEM", "FILE")
      ->check(CLI::ExistingFile);
  text("--secret", agents.secret, "what lets agents enrol", "TEXT");
  text("--keys", agents.keys, "the folder of server.pub, to which documents are sealed", "KEYS");
  text("--documents", agents.documents,
       "send what `documents --sealed` has written with the same seed", "FOLDER");
  text("--state", agents.state, "keep enrolments and the server's tokens for the next run", "FILE");
  command.add_flag("--prepare", agents.prepare, "make all documents before the first contact");
  command.add_flag("--only-tasks", agents.onlyTasks, "send no documents");
  seconds("--rate", agents.rate, "contacts that begin in a second; default: 20", "R");
  seconds("--give-up", agents.giveUp, "how long to wait for the last contacts; default: 120",
          "SECONDS");
  seconds("--keep-open", agents.keepOpen, "leave connections open so long after all contacts",
          "SECONDS");
  command.add_flag("--json", agents.json, "print JSON");
}

void CheckAgents(const AgentsOptions& agents) {
  const int sources = !agents.documents.empty() + agents.onlyTasks + agents.prepare;
  if (sources > 1) {
    throw UsageError("--documents, --prepare and --only-tasks exclude each other");
  }
  if (agents.keys.empty() && agents.documents.empty() && !agents.onlyTasks) {
    throw UsageError("agents needs --keys, --documents or --only-tasks");
  }
}

std::string OneLine(std::string text) {
  for (char& letter : text) {
    if (static_cast<unsigned char>(letter) < ' ') letter = ' ';
  }
  return text;
}

}  // namespace

ForgeCall ParseForgeCall(const std::vector<std::string>& arguments) {
  ForgeCall call;
  std::string start = "2026-01-05";
  CLI::App program("Makes believable documents of a fleet of Macs that do not exist.",
                   "norvik-forge");
  program.require_subcommand(1);

  CLI::App& documents = *program.add_subcommand(
      "documents", "write a full document of each Mac, and what changes day by day");
  AddFleetOptions(documents, call.documents.fleet, start);
  documents
      .add_option("--output", call.documents.output,
                  "the folder to write to; - prints a document on each line")
      ->required()
      ->check(NotEmpty)
      ->type_name("FOLDER");
  documents
      .add_option("--sealed", call.documents.keys,
                  "pack the documents and seal them to server.pub of this folder")
      ->check(NotEmpty)
      ->type_name("KEYS");

  AddAgents(program, call.agents, start);

  try {
    std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
    if (!reversed.empty()) reversed.pop_back();
    program.parse(reversed);
  } catch (const CLI::CallForHelp&) {
    call.help = program.help();
    return call;
  } catch (const CLI::ParseError& error) {
    throw UsageError(OneLine(error.what()));
  }
  call.command = program.get_subcommands().front()->get_name();
  call.documents.fleet.start = call.agents.fleet.start = DayOf(start);
  if (call.command == "agents") CheckAgents(call.agents);
  if (call.documents.output == "-" && !call.documents.keys.empty()) {
    throw UsageError("--sealed needs a folder as --output");
  }
  return call;
}

}  // namespace Norvik::Forge
