#include "common/commands/ToolOfLine.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <sstream>

#include "common/text/Text.h"

namespace Norvik::Common {

namespace {

constexpr char REMOVAL[] = "rm ";

bool IsProgram(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
         ::access(path.c_str(), X_OK) == 0;
}

}  // namespace

std::string QuestionOfLine(const std::string& line) {
  std::string question = line;
  if (question.rfind(REMOVAL, 0) == 0) question.erase(0, question.find(';') + 1);
  return trim_copy(question.substr(0, question.find_first_of("|>")));
}

std::string ToolOfLine(const std::string& line) {
  const std::string question = QuestionOfLine(line);
  return question.substr(0, question.find_first_of(" ;"));
}

std::string FindProgram(const std::string& name) {
  const char* const path = ::getenv("PATH");
  std::istringstream folders(path ? path : "/usr/bin:/bin");
  for (std::string folder; std::getline(folders, folder, ':');) {
    std::string program = (folder.empty() ? "." : folder) + "/" + name;
    if (IsProgram(program)) return program;
  }
  return {};
}

}  // namespace Norvik::Common
