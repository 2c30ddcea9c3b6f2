#include "cli/commands/CommandLine.h"
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
  }
}

}  // namespace
