#include <string>
#include <vector>

#include "host/AgentProgram.h"

int main(int argc, char** argv) {
  return Norvik::Host::RunAgentProgram(std::vector<std::string>(argv, argv + argc));
}
