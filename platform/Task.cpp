#include "platform/Task.h"

#include "platform/ChildProcess.h"
#include "platform/MachinePath.h"

namespace Norvik::Platform {

std::string RunTask(const std::string& program, const std::vector<std::string>& arguments) {
  std::string output;
  ChildCommand child;
  child.words = {MachinePath(program)};
  child.words.insert(child.words.end(), arguments.begin(), arguments.end());
  child.onOutput = [&](std::string_view piece) { output += piece; };
  child.onErrors = [](std::string_view) {};
  child.isQuery = true;
  RunChild(child);
  return output;
}

}  // namespace Norvik::Platform
