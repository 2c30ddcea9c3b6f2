#include <string>
#include <vector>

#include "cli/AgentProgram.h"

int main(int argc, char** argv) {
  return Norvik::Cli::RunAgentProgram(std::vector<std::string>(argv, argv + argc));
}
