#include "host/recording/ToolRecorder.h"

#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>
#include <boost/filesystem/operations.hpp>
#include <fstream>
#include <stdexcept>
#include <string_view>

#include "host/recording/RecordingScripts.h"

namespace Norvik::Host {

namespace {

namespace fs = boost::filesystem;

constexpr char RECORDING_VARIABLE[] = "NORVIK_RECORDING";
constexpr char WORK_VARIABLE[] = "NORVIK_RECORDING_WORK";
constexpr char PATH_VARIABLE[] = "NORVIK_RECORDING_PATH";
constexpr char LIMIT_VARIABLE[] = "NORVIK_RECORDING_LIMIT";

std::string PathOfProcess() {
  const char* const path = ::getenv("PATH");
  return path ? path : "/usr/bin:/bin:/usr/sbin:/sbin";
}

/// The file that a shell runs for a name; empty if no file is found.
fs::path ProgramFile(const std::string& name, const std::string& path) {
  std::vector<std::string> folders;
  boost::split(folders, path, boost::is_any_of(":"));
  for (const auto& folder : folders) {
    fs::path file = fs::path(folder) / name;
    if (::access(file.c_str(), X_OK) == 0 && !fs::is_directory(file)) return file;
  }
  return {};
}

bool IsInBin(const fs::path& file) {
  boost::system::error_code missing;
  return fs::equivalent(file, "/bin" / file.filename(), missing);
}

void WriteScript(const fs::path& file, std::string_view text) {
  std::ofstream stream(file.string(), std::ios::binary);
  if (!stream.write(text.data(), static_cast<std::streamsize>(text.size())).flush()) {
    throw std::runtime_error("cannot write " + file.string());
  }
  fs::permissions(
      file, fs::owner_all | fs::group_read | fs::group_exe | fs::others_read | fs::others_exe);
}

/// Skips a quoted part of a line; `at` is its first quote. Returns the position of the last one.
std::size_t EndOfQuote(const std::string& line, std::size_t at) {
  const char quote = line[at];
  for (++at; at < line.size() && line[at] != quote; ++at) {
    if (line[at] == '\\' && quote == '"') ++at;
  }
  return at;
}

}  // namespace

std::vector<std::string> ProgramsOf(const std::string& line) {
  static constexpr std::string_view OPERATORS = ";&|\n(){}";
  std::vector<std::string> programs;
  std::string word;
  bool isFirstWord = true;
  const auto endWord = [&] {
    // An assignment before the program is not the program.
    if (isFirstWord && !word.empty() && word.find('=') == std::string::npos) {
      programs.push_back(word);
      isFirstWord = false;
    }
    word.clear();
  };
  for (std::size_t at = 0; at < line.size(); ++at) {
    const char c = line[at];
    if (c == '\'' || c == '"') {
      const std::size_t end = EndOfQuote(line, at);
      word += line.substr(at + 1, end - at - 1);
      at = std::min(end, line.size());
    } else if (OPERATORS.find(c) != std::string_view::npos) {
      endWord();
      const bool isDouble = at + 1 < line.size() && line[at + 1] == c;
      isFirstWord = c != '|' || isDouble;
      if (isDouble) ++at;
    } else if (c == ' ' || c == '\t' || c == '<' || c == '>') {
      endWord();
    } else {
      word += c;
    }
  }
  endWord();
  return programs;
}

ToolRecorder::ToolRecorder(const fs::path& recording, const fs::path& work,
                           std::chrono::seconds limit)
    : work_(work), path_(PathOfProcess()) {
  for (const fs::path& folder : {recording / "bin", recording / "data", work / "tools"}) {
    fs::create_directories(folder);
  }
  WriteScript(recording / "bin/answer", ANSWER_SCRIPT);
  WriteScript(work / "record-tool", RECORD_TOOL_SCRIPT);
  if (!std::ofstream((recording / "answers.txt").string())) {
    throw std::runtime_error("cannot write " + (recording / "answers.txt").string());
  }
  ::setenv(RECORDING_VARIABLE, recording.c_str(), 1);
  ::setenv(WORK_VARIABLE, work.c_str(), 1);
  ::setenv(PATH_VARIABLE, path_.c_str(), 1);
  ::setenv(LIMIT_VARIABLE, std::to_string(limit.count()).c_str(), 1);
  ::setenv("PATH", ((work / "tools").string() + ":" + path_).c_str(), 1);
}

ToolRecorder::~ToolRecorder() {
  ::setenv("PATH", path_.c_str(), 1);
  for (const char* name : {RECORDING_VARIABLE, WORK_VARIABLE, PATH_VARIABLE, LIMIT_VARIABLE}) {
    ::unsetenv(name);
  }
}

void ToolRecorder::Prepare(const std::string& program) {
  if (program.find('/') != std::string::npos) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!IsInBin(program)) unrecorded_.insert(program);
    return;
  }
  const fs::path file = ProgramFile(program, path_);
  if (file.empty() || IsInBin(file)) return;
  boost::system::error_code exists;
  fs::create_symlink("../record-tool", work_ / "tools" / program, exists);
}

Platform::ChildResult ToolRecorder::Run(const Platform::ChildCommand& command) {
  for (const auto& program : command.isShellLine ? ProgramsOf(command.words.back())
                                                 : std::vector{command.words.front()}) {
    Prepare(program);
  }
  return RealSystemChanges::Run(command);
}

std::vector<std::string> ToolRecorder::UnfinishedCalls() const {
  std::vector<std::string> calls;
  std::ifstream file((work_ / "unfinished").string());
  for (std::string line; std::getline(file, line);) calls.push_back(line);
  return calls;
}

}  // namespace Norvik::Host
