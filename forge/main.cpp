#include "forge/ForgeProgram.h"

int main(int argc, char** argv) {
  return Norvik::Forge::RunForgeProgram(std::vector<std::string>(argv, argv + argc));
}
