#include "host/commands/CommandLine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/text/Text.h"
#include "host/HostError.h"
#include "host/TextFile.h"
#include "host/commands/ActionArguments.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Host;
using testing::ElementsAre;
using testing::HasSubstr;

CommandLine Parse(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "norvik-agent");
  return ParseCommandLine(arguments);
}

TEST(CommandLine, GlobalOptionsStandBeforeOrBehindTheCommand) {
  const std::vector<std::vector<std::string>> forms = {
      {"--data", "/d", "--log-level", "7", "--user-process", "--json", "--config=/c", "inventory",
       "--incremental"},
      {"inventory", "--incremental", "--data", "/d", "--log-level", "7", "--user-process", "--json",
       "--config=/c"}};
  for (const auto& form : forms) {
    const CommandLine line = Parse(form);
    EXPECT_EQ(line.command, "inventory");
    EXPECT_TRUE(line.incremental);
    EXPECT_EQ(line.agent.dataFolder, "/d");
    EXPECT_EQ(line.agent.configurationFile, "/c");
    EXPECT_EQ(line.agent.logLevel, 7);
    EXPECT_TRUE(line.agent.userProcess);
    EXPECT_TRUE(line.json);
  }
  const CommandLine plain = Parse({"open", "file", "--pretty"});
  EXPECT_EQ(plain.file, "file");
  EXPECT_TRUE(plain.pretty);
  EXPECT_EQ(plain.agent.logLevel, 4);
  EXPECT_FALSE(plain.json || plain.agent.userProcess || plain.agent.dataFolder.empty());
}

TEST(CommandLine, TakesTheParametersOfAnActionInOrder) {
  const CommandLine line = Parse({"action", "1011", "a=1", "--json", "b:bool=true"});
  EXPECT_EQ(line.action, "1011");
  EXPECT_THAT(line.parameters, ElementsAre("a=1", "b:bool=true"));
}

TEST(CommandLine, WrongUseIsToldOnOneLineWithTheOption) {
  const struct {
    std::vector<std::string> arguments;
    const char* error;
  } cases[] = {
      {{}, "a command is wanted; the commands are inventory, files, explain, open, apply"},
      {{"inventry"}, "unknown command inventry; the commands are inventory"},
      {{"inventory", "--full"}, "--full"},
      {{"inventory", "extra"}, "extra"},
      {{"open"}, "FILE"},
      {{"open", ""}, "FILE"},
      {{"apply", "full.json"}, "INCREMENTAL"},
      {{"diff", "old.json", "new.json", "--output", ""}, "--output"},
      {{"action"}, "ACTION"},
      {{"configure"}, "FILE"},
      {{"status", "--data"}, "--data"},
      {{"status", "--data", ""}, "--data"},
      {{"status", "--log-level", "8"}, "--log-level: Value 8 not in range 2 to 7"},
      {{"status", "--log-level", "x"}, "--log-level"},
  };
  for (const auto& row : cases) {
    try {
      Parse(row.arguments);
      ADD_FAILURE() << "accepted, where this was expected: " << row.error;
    } catch (const UsageError& error) {
      EXPECT_THAT(OnOneLine(error.what()), HasSubstr(row.error));
    }
  }
}

TEST(CommandLine, HelpIsNoError) {
  EXPECT_THAT(Parse({"--help"}).help, HasSubstr("inventory"));
  EXPECT_EQ(Parse({"--help"}).command, "");
}

TEST(ActionArguments, ReadsTextsFlagsAndNumbers) {
  ActionParameters parameters =
      ParseActionParameters({"name=a=b", "empty=", "path:x=\xC3\xA9", "on:bool=true",
                             "off:bool=false", "pid:u64=18446744073709551615"});
  EXPECT_EQ(parameters.Get<wxString>("name"), "a=b");
  EXPECT_EQ(parameters.Get<wxString>("empty"), "");
  EXPECT_EQ(ToUtf8(parameters.Get<wxString>("path:x")), "\xC3\xA9");
  EXPECT_TRUE(parameters.Get<bool>("on"));
  EXPECT_FALSE(parameters.Get<bool>("off"));
  EXPECT_EQ(parameters.Get<unsigned long long>("pid"), 18446744073709551615ull);
  EXPECT_EQ(parameters.Values().size(), 6u);
}

TEST(ActionArguments, RefusesWhatIsNoParameterAndNamesIt) {
  const struct {
    std::vector<std::string> arguments;
    const char* error;
  } cases[] = {{{"name"}, "parameter name wants the form key=value"},
               {{"=x"}, "parameter =x wants the form"},
               {{":bool=true"}, "parameter :bool=true wants the form"},
               {{"on:bool=yes"}, "parameter on:bool wants true or false"},
               {{"pid:u64=-1"}, "parameter pid:u64 wants a whole number"},
               {{"pid:u64=18446744073709551616"}, "parameter pid:u64 wants a whole number"},
               {{"pid:u64="}, "parameter pid:u64 wants a whole number"},
               {{"pid:u64=1x"}, "parameter pid:u64 wants a whole number"},
               {{"name=\xFF"}, "parameter name wants UTF-8"},
               {{"a=1", "a:u64=2"}, "parameter a is given twice"}};
  for (const auto& row : cases) {
    try {
      ParseActionParameters(row.arguments);
      ADD_FAILURE() << "accepted, where this was expected: " << row.error;
    } catch (const UsageError& error) {
      EXPECT_THAT(error.what(), HasSubstr(row.error));
    }
  }
}

TEST(ActionArguments, AnActionIsToldByNumberOrName) {
  EXPECT_EQ(ParseActionCode("1011"), 1011u);
  EXPECT_EQ(ParseActionCode("ACTION_LIST_PROCESSES"), 1011u);
  EXPECT_EQ(ParseActionCode("common_action_init"), 32012u);
  EXPECT_EQ(ParseActionCode("4294967295"), 4294967295u);
  for (const char* text : {"", "ACTION_X", "-1", "4294967296", "10 11", "1011x"}) {
    EXPECT_THROW(ParseActionCode(text), UsageError) << text;
  }
}

}  // namespace
