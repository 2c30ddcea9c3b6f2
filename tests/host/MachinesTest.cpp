// Recorded machines are in force on systems other than macOS only.
#ifdef __linux__

#include <gmock/gmock.h>
#include <stdlib.h>
#include <time.h>

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <nlohmann/json.hpp>
#include <sstream>

#include "common/identification/HostInfoProvider.h"
#include "host/AgentProgram.h"
#include "host/RecordedCommands.h"
#include "platform/WaitClock.h"
#include "platform/compat/LiveObjects.h"
#include "support/Files.h"
#include "support/FixedFilesLock.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace Norvik;
using namespace Norvik::Tests;
using Json = nlohmann::json;
namespace fs = boost::filesystem;
using testing::HasSubstr;

const fs::path MACHINES = fs::path(NORVIK_SOURCE_DIR) / "tests/machines";

/// Those that say what is expected of them.
std::vector<std::string> AllMachines() {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(MACHINES)) {
    if (fs::exists(entry.path() / "expected.json"))
      names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

/// The text of a command that an expectation names: "name" or ["name", "argument"].
std::string CommandText(const Json& named, const Json& commands) {
  const Json& command = commands.at(named.is_array() ? named[0] : named);
  std::string text = command.at("text");
  if (named.is_array()) text.replace(text.find("%s"), 2, named[1].get<std::string>());
  return command.at("by").get<std::string>() + ": " + text;
}

/// What can be compared with an expectation: of an object its keys only, and services in the order
/// of their names, since a folder has none.
Json Comparable(const std::string& section, Json actual, const Json& expected) {
  if (expected.is_object() && actual.is_object()) {
    Json chosen = Json::object();
    for (const auto& [key, value] : expected.items()) chosen[key] = actual.value(key, Json());
    return chosen;
  }
  if (section == "service" && actual.is_array()) {
    std::stable_sort(actual.begin(), actual.end(), [](const Json& left, const Json& right) {
      return left["name"] < right["name"];
    });
  }
  return actual;
}

/// Time goes by only where something waits.
class LeapingClock final : public Platform::WaitClock {
 public:
  TimePoint Now() override { return now_; }
  void SleepFor(std::chrono::milliseconds duration) override { now_ += duration; }

 private:
  TimePoint now_;
};

/// Runs the program in this process, on a data folder of its own, which is the working directory
/// as well: one of the collectors leaves a file there.
class Machines : public testing::TestWithParam<std::string> {
 protected:
  Machines() : workingDirectory_(fs::current_path()) {
    fs::current_path(folder_.Path());
    ::setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
    ::tzset();
  }
  ~Machines() override {
    fs::current_path(workingDirectory_);
    ::unsetenv("TZ");
    ::tzset();
  }

  int TakeInventory() {
    return Host::RunAgentProgram(
        {"norvik-agent", "--machine", (MACHINES / GetParam()).string(), "--module",
         std::string(NORVIK_BINARY_DIR) + "/lib/libNorvikKOB.so", "--data",
         (folder_ / "data").string(), "inventory"},
        output_, output_);
  }
  Json Document() const {
    const auto name = Common::HostInfoProvider::GetHostName() + ".jsonkob";
    return Json::parse(ContentOf(folder_ / "data/previous" / name), nullptr, false);
  }
  std::string Output() const { return output_.str(); }

 private:
  const FixedFilesLock lock_;
  TemporaryFolder folder_;
  fs::path workingDirectory_;
  std::ostringstream output_;
  LeapingClock clock_;
  Platform::WaitClockScope clockScope_{clock_};
};

TEST_P(Machines, GiveWhatIsExpectedByTheCommandsThatAreExpectedAndHoldNothing) {
  const Json expected = Json::parse(ContentOf(MACHINES / GetParam() / "expected.json"));
  const Json commands = Json::parse(ContentOf(MACHINES / "commands.json"));
  const RecordedCommands recorded;
  const int code = TakeInventory();

  if (expected.contains("failure")) {
    EXPECT_EQ(code, Host::EXIT_FAILED);
    EXPECT_THAT(Output(), HasSubstr(expected["failure"].get<std::string>()));
    EXPECT_TRUE(Document().is_discarded());
  } else {
    EXPECT_EQ(code, Host::EXIT_DONE) << Output();
    const Json document = Document();
    ASSERT_TRUE(document.is_object()) << Output();
    for (const auto& [section, value] : expected.at("sections").items()) {
      EXPECT_EQ(Comparable(section, document.value(section, Json("missing")), value), value)
          << GetParam() << ": " << section;
    }
  }

  std::vector<std::string> texts;
  for (const Json& named : expected.at("commands")) texts.push_back(CommandText(named, commands));
  EXPECT_EQ(recorded.Texts(), texts) << GetParam();

  const auto live = Platform::CountLiveObjects();
  EXPECT_EQ(live.coreFoundation, 0U) << GetParam();
  EXPECT_EQ(live.ioHandles, 0U) << GetParam();
}

INSTANTIATE_TEST_SUITE_P(Recorded, Machines, testing::ValuesIn(AllMachines()),
                         [](const auto& machine) {
                           std::string name = machine.param;
                           std::replace(name.begin(), name.end(), '-', '_');
                           return name;
                         });

}  // namespace

#endif
