#include <regex>

#include "cli/commands/CommandLine.h"
#include "common/identification/HostInfoProvider.h"
#include "platform/ChildProcess.h"
#include "platform/PropertyListFile.h"
#include "platform/compat/PropertyListReader.h"
#include "support/Test.h"

namespace {

using namespace Norvik;
using namespace Norvik::Tests;
using Words = TextList;

const std::string PACKAGING = std::string(NORVIK_SOURCE_DIR) + "/packaging/";

Words CommandOfPropertyList(const std::string& file) {
  Words words;
  const auto list = Platform::ReadPropertyList(ContentOf(PACKAGING + file));
  EXPECT_TRUE(list) << file;
  Platform::ForEachKey(list.get(), [&](const char* key, plist_t value) {
    if (key == std::string("Label")) {
      EXPECT_EQ("macos/" + Platform::TextOf(value) + ".plist", file);
    }
    if (key != std::string("ProgramArguments")) return;
    Platform::ForEachElement(value, [&](plist_t word) { words.push_back(Platform::TextOf(word)); });
  });
  return words;
}

/// The command of a systemd unit. Each line is a section, a setting or a comment.
Words CommandOfUnit(const std::string& file) {
  Words words;
  std::istringstream lines(ContentOf(PACKAGING + file));
  for (std::string line; std::getline(lines, line);) {
    EXPECT_THAT(line, MatchesRegex("|#.*|\\[(Unit|Service|Install)\\]|[A-Z][A-Za-z]+=.+")) << file;
    if (line.rfind("ExecStart=", 0) != 0) continue;
    std::istringstream command(line.substr(line.find('=') + 1));
    for (std::string word; command >> word;) words.push_back(word);
  }
  return words;
}

TEST(Packaging, EachDescriptionIsWellFormedAndStartsACommandThatThereIs) {
  const struct {
    const char* file;
    Words (*read)(const std::string&);
    const char* command;
  } rows[] = {{"macos/com.norvik.agent.plist", CommandOfPropertyList, "run"},
              {"macos/com.norvik.agent.user.plist", CommandOfPropertyList, "user"},
              {"systemd/norvik-agent.service", CommandOfUnit, "run"},
              {"systemd/norvik-agent-user.service", CommandOfUnit, "user"}};
  for (const auto& row : rows) {
    const Words words = row.read(row.file);
    ASSERT_FALSE(words.empty()) << row.file;
    EXPECT_EQ(words.front(), "/opt/local/norvik/bin/norvik-agent") << row.file;
    EXPECT_EQ(Cli::ParseCommandLine(words).command, row.command) << row.file;
    const bool limits =
        std::regex_search(ContentOf(PACKAGING + row.file),
                          std::regex("LimitNOFILE=1024:|NumberOfFiles</key>\\s*<integer>1024<"));
    EXPECT_EQ(limits, row.command == std::string("run")) << row.file;
  }
}

TEST(Packaging, TheProgramHoldsItsIdentifierAndItsVersion) {
  const Platform::PropertyListFile list(NORVIK_BINARY_DIR "/cli/Info.plist");
  EXPECT_EQ(list.Text("CFBundleIdentifier"), "com.norvik.agent");
  EXPECT_EQ(list.Text("CFBundleVersion") + ".0", Common::GetAgentVersion());
}

/// A row: the team, a program, the settings, and the end of the only line; without a line there are
/// profiles.
TEST(Packaging, ProfilesAreTheSameForTheSameTeamAndNeedOne) {
  for (const auto& row : Tests::DataOf("cli/run/profiles.json")) {
    const Tests::TemporaryFolder folder;
    const auto in = [&](const char* name) { return (folder / name).string(); };
    const std::string team = row[0];
    const std::string line = row[3];
    Tests::WriteFile(in("program"), row[1].get<Tests::Bytes>());
    Tests::WriteFile(in("settings"), row[2].get<Tests::Bytes>());
    std::set<std::string> contents;
    for (const char* output : {"first", "second"}) {
      Platform::ChildCommand command;
      command.words = {NORVIK_PYTHON, NORVIK_SOURCE_DIR "/script/macos-profile",
                       team,          in(output),
                       "--program",   in("program"),
                       "--settings",  in("settings")};
      std::string errors;
      command.onOutput = [](std::string_view) {};
      command.onErrors = [&](std::string_view piece) { errors += piece; };
      EXPECT_EQ(Platform::RunChild(command).exitCode, line.empty() ? 0 : 1) << row << errors;
      EXPECT_THAT(errors, testing::EndsWith(line.empty() ? "" : line + "\n"));
      EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), line.empty() ? 0 : 1) << errors;
      if (!line.empty()) continue;
      for (const auto& file : Tests::FilesBelow(folder / output)) {
        contents.insert(Tests::ContentOf(folder / output / file));
      }
    }
    EXPECT_EQ(contents.size(), line.empty() ? 3u : 0u);
    for (const auto& content : contents) EXPECT_TRUE(Platform::ReadPropertyList(content));
  }
}

}  // namespace
