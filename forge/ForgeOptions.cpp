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
  call.documents.fleet.start = DayOf(start);
  if (call.documents.output == "-" && !call.documents.keys.empty()) {
    throw UsageError("--sealed needs a folder as --output");
  }
  return call;
}

}  // namespace Norvik::Forge
