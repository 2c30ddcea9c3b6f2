// Recorded machines exist only on systems other than macOS.
#ifdef __linux__

#include <gmock/gmock.h>

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <sstream>

#include "cli/AgentProgram.h"
#include "cli/RecordedCommands.h"
#include "cli/commands/Commands.h"
#include "platform/WaitClock.h"
#include "platform/compat/LiveObjects.h"
#include "support/Cases.h"
#include "support/Surroundings.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace Norvik;
using namespace Norvik::Tests;
namespace fs = boost::filesystem;
using testing::HasSubstr;

const fs::path MACHINES = fs::path(NORVIK_SOURCE_DIR) / "tests/machines";

/// Recorded machines that state their expected results.
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

/// A clock that advances only while something waits.
class LeapingClock final : public Platform::WaitClock {
 public:
  TimePoint Now() override { return now_; }
  void SleepFor(std::chrono::milliseconds duration) override { now_ += duration; }

 private:
  TimePoint now_;
};

/// Runs the program in this process, on a data folder of its own. That is also the working
/// directory, where one of the collectors writes a file.
class Machines : public testing::TestWithParam<std::string> {
 protected:
  Machines() { fs::current_path(folder_.Path()); }

  int TakeInventory() {
    return Cli::RunAgentProgram(
        {"norvik-agent", "--machine", (MACHINES / GetParam()).string(), "--module",
         std::string(NORVIK_BINARY_DIR) + "/lib/libNorvikKOB.so", "--data",
         (folder_ / "data").string(), "inventory"},
        output_, output_);
  }
  Json Document() const {
    const fs::path previous = folder_ / "data/previous";
    std::string text;  // of the one file there, which has the name of the recorded machine
    if (fs::exists(previous)) {
      for (const auto& file : fs::directory_iterator(previous)) text = ContentOf(file.path());
    }
    Json document = Json::parse(text, nullptr, false);
    // The entries of a folder of services have no order.
    if (document.is_object() && document["service"].is_array()) {
      std::sort(document["service"].begin(), document["service"].end(),
                [](const Json& left, const Json& right) { return left["name"] < right["name"]; });
    }
    return document;
  }
  std::string Output() const { return output_.str(); }

 private:
  const FixedFilesLock lock_;
  const TimeZone zone_{"CET-1CEST,M3.5.0,M10.5.0/3"};
  TemporaryFolder folder_;
  const Scope workingDirectory_{[before = fs::current_path()] { fs::current_path(before); }};
  std::ostringstream output_;
  LeapingClock clock_;
  Platform::WaitClockScope clockScope_{clock_};
};

TEST_P(Machines, GiveWhatIsExpectedByTheCommandsThatAreExpectedAndHoldNothing) {
  const Json& expected = DataOf("machines/" + GetParam() + "/expected.json");
  const Json& commands = DataOf("machines/commands.json");
  const RecordedCommands recorded;
  const int code = TakeInventory();

  Json document = Document();
  const std::string failure = expected.value("failure", "");
  EXPECT_EQ(code, failure.empty() ? Cli::EXIT_DONE : Cli::EXIT_FAILED) << Output();
  EXPECT_THAT(Output(), HasSubstr(failure));
  EXPECT_EQ(document.is_object(), failure.empty());
  const Json& sections = PartOf(expected, "sections");
  const bool whole = expected.value("whole", false);
  if (whole) {
    for (const char* key : {"guid", "assetDate"}) EXPECT_EQ(document["device"].erase(key), 1u);
    EXPECT_EQ(document.size(), sections.size());
  }
  for (const auto& [section, value] : sections.items()) {
    const Json& found = PartOf(document, section.c_str());
    EXPECT_EQ(nlohmann::json(whole ? found : Chosen(found, value)), nlohmann::json(value))
        << section;
  }

  std::vector<std::string> texts;
  for (const Json& named : expected.at("commands")) texts.push_back(CommandText(named, commands));
  EXPECT_EQ(recorded.Texts(), texts);
  EXPECT_EQ(Platform::CountLiveObjects(), Platform::LiveObjects());
}

INSTANTIATE_TEST_SUITE_P(Recorded, Machines, testing::ValuesIn(AllMachines()),
                         [](const auto& machine) {
                           std::string name = machine.param;
                           std::replace(name.begin(), name.end(), '-', '_');
                           return name;
                         });

}  // namespace

#endif
