#pragma once

#include <gmock/gmock.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "support/Cases.h"
#include "support/LogCapture.h"
#include "support/Surroundings.h"
#include "support/TemporaryFolder.h"

/// What most tests use. The headers of gmock and nlohmann provide the standard containers and
/// texts.
namespace Norvik::Tests {

using namespace testing;
namespace fs = boost::filesystem;
using PlainJson = nlohmann::json;
using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::system_clock;
using TextList = std::vector<std::string>;

}  // namespace Norvik::Tests
