#pragma once

namespace Norvik::Receiver {

/// The program norvik-receiver. Returns 0; 1 after a failure, which has one line on standard error;
/// 2 after a wrong use.
int RunProgram(int argc, char** argv);

}  // namespace Norvik::Receiver
