#include "platform/ChildStartLook.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <sstream>

namespace Norvik::Platform {

namespace {

constexpr char USUAL_PATH[] = "/bin:/usr/bin";
constexpr char PLAIN_CHARACTERS[] =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-./:=,+%@";

int FileProblem(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return errno;
  if (!S_ISREG(status.st_mode)) return EACCES;
  return ::access(path.c_str(), X_OK) == 0 ? 0 : errno;
}

/// A file that may not be run does not end the search, but is told of if no other is found.
int ProblemInPath(const std::string& program) {
  const char* const path = std::getenv("PATH");
  std::istringstream folders(path ? path : USUAL_PATH);
  int problem = ENOENT;
  for (std::string folder; std::getline(folders, folder, ':');) {
    const int found = FileProblem((folder.empty() ? "." : folder) + "/" + program);
    if (found == 0) return 0;
    if (found == EACCES) problem = EACCES;
  }
  return problem;
}

bool CanBecome(const ChildAccount& account) {
  return ::geteuid() == 0 || (::geteuid() == account.user && ::getegid() == account.group);
}

std::string Quoted(const std::string& word) {
  if (!word.empty() && word.find_first_not_of(PLAIN_CHARACTERS) == std::string::npos) return word;
  std::string text = "'";
  for (const char c : word) text += c == '\'' ? "'\\''" : std::string(1, c);
  return text + "'";
}

}  // namespace

int StartProblem(const ChildCommand& command) {
  if (command.account && !CanBecome(*command.account)) return EPERM;
  const std::string& program = command.words.front();
  if (program.find('/') == std::string::npos) return ProblemInPath(program);
  // Behind another account's start the working folder is its home.
  const bool elsewhere = command.account && program.front() != '/';
  return FileProblem(elsewhere ? command.account->home + "/" + program : program);
}

std::string ShellText(const ChildCommand& command) {
  const auto& words = command.words;
  const bool isLine = words.size() == 3 && words[0] == "/bin/sh" && words[1] == "-c";
  if (command.onlyAsks && isLine) return words[2];
  std::string text;
  for (const auto& word : words) text += (text.empty() ? "" : " ") + Quoted(word);
  return text;
}

}  // namespace Norvik::Platform
