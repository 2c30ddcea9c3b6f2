#pragma once

#include "platform/ChildProcess.h"
#include "support/Test.h"

namespace Norvik::Tests {

struct Answer {
  int code = -1;
  std::string output;
  std::string errors;
};

/// Runs the program itself on a data folder of its own.
struct Program {
  using Words = TextList;

  /// @param killAt the program is killed after it has printed this; "": never
  Answer Run(const Words& words, std::string killAt = {}) const {
    Platform::ChildCommand command;
    // The process id comes first: the shell prints its own and then becomes the program.
    command.words = {"/bin/sh", "-c", "echo $$; exec \"$@\"", "sh",
                     NORVIK_BINARY_DIR "/bin/norvik-agent"};
    for (const Words& part : {words, {"--data", Data().string()}, options_}) {
      command.words.insert(command.words.end(), part.begin(), part.end());
    }
    Answer answer;
    command.onOutput = [&](std::string_view piece) {
      answer.output += piece;
      if (killAt.empty() || answer.output.find(killAt) == std::string::npos) return;
      killAt.clear();
      ::kill(std::stoi(answer.output), SIGKILL);
    };
    command.onErrors = [&](std::string_view piece) { answer.errors += piece; };
    answer.code = Platform::RunChild(command).exitCode;
    answer.output.erase(0, answer.output.find('\n') + 1);
    return answer;
  }
  Answer RunWell(const Words& words) const {
    const Answer answer = Run(words);
    EXPECT_EQ(answer.code, 0) << answer.errors;
    return answer;
  }
  /// The output of a successful command with --json: one line, or a document unchanged.
  nlohmann::json Ask(Words words) const {
    words.push_back("--json");
    const std::string output = RunWell(words).output;
    EXPECT_EQ(LinesOf(output), words.front() == "open" ? 0 : 1) << output;
    return nlohmann::json::parse(output, nullptr, false);
  }
  /// A failure is reported on one line, without any other output.
  void ExpectRefusal(const Words& words, int code, const std::string& text) const {
    const Answer answer = Run(words);
    EXPECT_EQ(answer.code, code) << answer.errors;
    EXPECT_EQ(answer.output, "");
    EXPECT_THAT(answer.errors, testing::HasSubstr(text));
    EXPECT_EQ(LinesOf(answer.errors), 1) << answer.errors;
  }
  static std::ptrdiff_t LinesOf(const std::string& text) {
    return std::count(text.begin(), text.end(), '\n');
  }
  fs::path Data() const { return folder_ / "data"; }
  fs::path Tree() const { return folder_ / "tree"; }
  /// Inventories of files scan only the tree. Its parent gets no other folder afterwards.
  void ScanOnlyTheTree() {
    fs::create_directories(Data());
    fs::create_directories(Tree());
    const PlainJson configuration = {{"excludedPaths", AllBut(Tree())},
                                     {"excludedFiles", {"left out.sample"}},
                                     {"includedExtensions", {"sample"}}};
    WriteFile(folder_ / "configuration.json", configuration.dump());
    options_ = {"--config", (folder_ / "configuration.json").string()};
  }

  TemporaryFolder folder_;
  Words options_;  ///< come after the words of each command
};

struct ProgramTest : testing::Test, Program {
  using Program::Run;
};

}  // namespace Norvik::Tests
