#include "forge/ForgeProgram.h"

#include <clocale>
#include <exception>
#include <iostream>
#include <memory>

#include "common/log/Logger.h"
#include "forge/DocumentsCommand.h"
#include "forge/ForgeOptions.h"
#include "forge/agents/AgentsCommand.h"

namespace Norvik::Forge {

namespace {

enum ExitCode { EXIT_DONE = 0, EXIT_FAILED = 1, EXIT_WRONG_USE = 2 };

/// Without a logger all that the comparison of records logs would go to standard error.
class ProblemLogger final : public Common::Logger {
 public:
  void Log(Level level, const std::string& text, const char* /*file*/, int /*line*/,
           const char* /*function*/) override {
    if (level <= LEVEL_WARNING) Trace("norvik-forge: " + text);
  }
};

int Run(const ForgeCall& call, std::ostream& output) {
  if (!call.help.empty()) {
    output << call.help;
    return EXIT_DONE;
  }
  if (call.command == "agents") {
    return RunAgents(call.agents, output) ? EXIT_DONE : EXIT_FAILED;
  }
  WriteDocuments(call.documents, output);
  return EXIT_DONE;
}

}  // namespace

int RunForgeProgram(const std::vector<std::string>& arguments, std::ostream& output,
                    std::ostream& errors) {
  const auto fail = [&](const std::exception& error, ExitCode code) {
    errors << "norvik-forge: " << error.what() << std::endl;
    return code;
  };
  try {
    const int code = Run(ParseForgeCall(arguments), output);
    if (output.flush()) return code;
    throw std::runtime_error("cannot write the output");
  } catch (const UsageError& error) {
    return fail(error, EXIT_WRONG_USE);
  } catch (const std::exception& error) {
    return fail(error, EXIT_FAILED);
  }
}

int RunForgeProgram(const std::vector<std::string>& arguments) {
  // The records hold wide texts, which need the characters of UTF-8; numbers keep their point.
  if (!std::setlocale(LC_CTYPE, "C.UTF-8")) std::setlocale(LC_CTYPE, "UTF-8");
  std::ios::sync_with_stdio(false);
  Common::Logger::SetInstance(std::make_shared<ProblemLogger>());
  return RunForgeProgram(arguments, std::cout, std::cerr);
}

}  // namespace Norvik::Forge
