#include "host/commands/CommandLine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/text/Text.h"
#include "host/HostError.h"
#include "host/TextFile.h"
#include "host/commands/ActionArguments.h"
#include "support/Cases.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Host;
using namespace Norvik::Tests;
using testing::ElementsAre;
using testing::HasSubstr;

const Json REFUSED = DataOf("host/commands/refused.json");

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
  for (const Json& row : REFUSED["command lines"]) {
    EXPECT_THAT(OnOneLine(MessageOf<UsageError>([&] { Parse(row[0]); })),
                HasSubstr(row[1].get<std::string>()))
        << row;
  }
}

TEST(CommandLine, AUsersProcessLooksForTheServiceOfTheMachineInAFolderOfItsOwn) {
  const CommandLine user = Parse({"user"});
  EXPECT_TRUE(user.agent.userProcess);
  EXPECT_NE(user.agent.dataFolder, Parse({"run"}).agent.dataFolder);
  EXPECT_EQ(user.socket, "/var/run/norvik/agent.sock");
  EXPECT_EQ(Parse({"user", "--data", "/d"}).socket, user.socket);
  EXPECT_EQ(Parse({"run", "--data", "/d"}).socket, "/d/agent.sock");
  EXPECT_EQ(Parse({"status", "--data", "/d", "--socket", "/s"}).socket, "/s");
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
  for (const Json& row : REFUSED["parameters"]) {
    const auto arguments = row[0].get<std::vector<Bytes>>();
    EXPECT_THAT(MessageOf<UsageError>([&] {
                  ParseActionParameters({arguments.begin(), arguments.end()});
                }),
                HasSubstr(row[1].get<std::string>()))
        << row;
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
