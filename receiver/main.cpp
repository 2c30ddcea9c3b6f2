#include "receiver/commands/Program.h"

int main(int argc, char** argv) { return Norvik::Receiver::RunProgram(argc, argv); }
