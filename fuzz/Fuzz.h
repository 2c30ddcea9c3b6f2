#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>

#include "common/log/Logger.h"

namespace Norvik::Fuzz {

/// Discards the log of the code under test, from construction on.
struct Quiet {
  Quiet() { Common::Logger::SetInstance(std::make_shared<Sink>()); }

 private:
  struct Sink final : Common::Logger {
    void Log(Level, const std::string&, const char*, int, const char*) override {}
  };
};

}  // namespace Norvik::Fuzz
