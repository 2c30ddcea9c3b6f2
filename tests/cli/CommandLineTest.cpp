#include "cli/commands/CommandLine.h"

#include "cli/commands/ActionArguments.h"
#include "cli/commands/FittedTable.h"
#include "cli/commands/NearestName.h"
#include "cli/commands/TimeArgument.h"
#include "common/files/TextFile.h"
#include "common/text/Text.h"
#include "host/HostError.h"
#include "support/Test.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Cli;
using namespace Norvik::Host;
using namespace Norvik::Tests;

const Json& Rows(const char* name) { return DataOf("cli/command-lines.json")[name]; }

CommandLine Parse(TextList arguments) {
  arguments.insert(arguments.begin(), "norvik-agent");
  return ParseCommandLine(arguments);
}

Json ParsedFrom(const TextList& arguments) {
  const CommandLine line = Parse(arguments);
  return {{"command", line.command},
          {"incremental", line.incremental},
          {"data", line.agent.dataFolder.string()},
          {"configuration", line.agent.configurationFile.string()},
          {"level", line.agent.logLevel},
          {"user", line.agent.userProcess},
          {"socket", line.socket.string()},
          {"json", line.json},
          {"file", line.file.string()},
          {"pretty", line.pretty},
          {"redact", line.redact},
          {"what", line.what},
          {"list", line.list},
          {"action", line.action},
          {"parameters", line.parameters},
          {"helps", line.help.find("inventory") != std::string::npos}};
}

TEST(CommandLine, OptionsComeBeforeOrAfterTheCommandAndHaveDefaults) {
  for (const Json& row : Rows("command lines")) {
    EXPECT_EQ(Shown(Chosen(ParsedFrom(row[0]), row[1])), Shown(row[1])) << row;
  }
  EXPECT_NE(Parse({"user"}).agent.dataFolder, Parse({"run"}).agent.dataFolder);
}

TEST(CommandLine, TheInstalledHelpPagesAreThoseOfTheProgram) {
  for (const Json& row : Rows("help pages")) {
    const std::string file = NORVIK_SOURCE_DIR "/packaging/help/" + row[1].get<std::string>();
    EXPECT_EQ(ReadTextFile(file), Parse(row[0]).help)
        << row[1] << " is out of date: print it again with " << row[0];
  }
}

TEST(CommandLine, WrongUseIsReportedOnOneLineWithTheOption) {
  for (const Json& row : Rows("wrong command lines")) {
    EXPECT_THAT(OnOneLine(MessageOf<UsageError>([&] { Parse(row[0]); })),
                HasSubstr(row[1].get<std::string>()))
        << row;
  }
}

TEST(NearestName, IsNamedForAMisspeltOne) {
  ExpectRows(
      Rows("unknown names"), +[](const std::string& wrong, const TextList& names) {
        return UnknownName("key", wrong, names);
      });
}

TEST(FittedTable, IsAsWideAsTheTerminal) {
  ExpectRows(
      Rows("fitted tables"), +[](const std::vector<TableRow>& rows, std::size_t width) {
        return FittedTable(rows, width);
      });
}

TEST(TimeArgument, IsADateOrAPeriodBeforeNow) {
  const TimeZone zone("CET-1CEST,M3.5.0,M10.5.0/3");
  ExpectRows(
      Rows("times"), +[](const std::string& text) -> std::string {
        try {
          return TimeText(TimeOfArgument("", text, system_clock::from_time_t(1'767'225'600)));
        } catch (const UsageError&) {
          return {};
        }
      });
}

TEST(ActionArguments, ReadsTextsFlagsAndNumbers) {
  ActionParameters parameters =
      ParseActionParameters({"name=a=b", "empty=", "path=\xC3\xA9", "on:bool=true",
                             "off:bool=false", "pid:u64=18446744073709551615"});
  EXPECT_EQ(parameters.Get<wxString>("name"), "a=b");
  EXPECT_EQ(parameters.Get<wxString>("empty"), "");
  EXPECT_EQ(ToUtf8(parameters.Get<wxString>("path")), "\xC3\xA9");
  EXPECT_TRUE(parameters.Get<bool>("on"));
  EXPECT_FALSE(parameters.Get<bool>("off"));
  EXPECT_EQ(parameters.Get<unsigned long long>("pid"), 18446744073709551615ull);
  EXPECT_EQ(parameters.Values().size(), 6u);
}

TEST(ActionArguments, RefusesWhatIsNoParameterAndNamesIt) {
  for (const Json& row : Rows("wrong parameters")) {
    const auto arguments = row[0].get<std::vector<Bytes>>();
    EXPECT_THAT(MessageOf<UsageError>([&] {
                  ParseActionParameters({arguments.begin(), arguments.end()});
                }),
                HasSubstr(row[1].get<std::string>()))
        << row;
  }
}

std::string CodeIn(const std::string& action) {
  try {
    return std::to_string(ParseActionCode(action));
  } catch (const UsageError&) {
    return {};
  }
}

TEST(ActionArguments, AnActionIsNamedByNumberOrName) { ExpectRows(Rows("actions"), CodeIn); }

}  // namespace
