#include <algorithm>
#include <boost/algorithm/string.hpp>
#include <cctype>
#include <map>

#include "cli/AgentProgram.h"
#include "cli/RecordedCommands.h"
#include "cli/commands/Commands.h"
#include "platform/compat/LiveObjects.h"
#include "support/FakeWaitClock.h"

namespace {

using namespace Norvik;
using namespace Norvik::Tests;

const fs::path MACHINES = fs::path(NORVIK_SOURCE_DIR) / "tests/machines";

TextList AllMachines() {
  TextList names;
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

/// Contents of files and targets of links, by path.
std::map<std::string, std::string> ContentsBelow(const fs::path& folder) {
  std::map<std::string, std::string> contents;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    std::string& content = contents[fs::relative(entry.path(), folder).string()];
    if (fs::is_symlink(entry.path())) {
      content = fs::read_symlink(entry.path()).string();
    } else if (fs::is_regular_file(entry.path())) {
      content = ContentOf(entry.path());
    }
  }
  return contents;
}

/// The paths at which two folders differ.
TextList DifferencesOf(const fs::path& one, const fs::path& other) {
  TextList paths;
  const auto contents = ContentsBelow(one);
  auto others = ContentsBelow(other);
  for (const auto& [path, content] : contents) {
    if (others.count(path) == 0 || others[path] != content) paths.push_back(path);
    others.erase(path);
  }
  for (const auto& [path, content] : others) paths.push_back(path);
  return paths;
}

/// A text with its kinds of characters only: what its replacement must have as well.
std::string ShapeOf(std::string text) {
  for (char& c : text) {
    if (std::isdigit(static_cast<unsigned char>(c))) c = '0';
    if (std::islower(static_cast<unsigned char>(c))) c = 'a';
    if (std::isupper(static_cast<unsigned char>(c))) c = 'A';
    // Letters of other scripts count by their number of bytes only.
    if (static_cast<unsigned char>(c) >= 0x80) c = 'u';
  }
  return text;
}

/// Every text has either itself or its one replacement in its place; all else is equal.
void ExpectSameShape(const Json& before, const Json& after,
                     std::map<std::string, std::string>& replaced) {
  ASSERT_EQ(before.type(), after.type()) << before << after;
  if (before.is_string()) {
    const std::string text = after;
    EXPECT_EQ(ShapeOf(text), ShapeOf(before)) << before << after;
    EXPECT_EQ(replaced.emplace(before, text).first->second, text) << before;
  } else if (before.is_structured()) {
    ASSERT_EQ(before.size(), after.size()) << before << after;
    for (auto one = before.begin(), other = after.begin(); one != before.end(); ++one, ++other) {
      const bool isSame = !before.is_object() || one.key() == other.key();
      EXPECT_TRUE(isSame) << before << after;
      ExpectSameShape(*one, *other, replaced);
    }
  } else {
    EXPECT_EQ(before, after);
  }
}

/// What a redacted recording must not hold.
TextList SensitiveValues(const Json& document) {
  static const TextList KEYS = {"serial",     "serialNumber", "uuid",
                                "macAddress", "alias",        "dhcpServers"};
  TextList values;
  const auto add = [&](const std::string& text) {
    const std::string value = boost::trim_copy(text);
    const bool isText = value.find_first_of("0123456789") == std::string::npos;
    if (value.size() >= 6 && (!isText || boost::ends_with(value, ".local")))
      values.push_back(value);
  };
  const Json flat = document.flatten();
  for (const auto& [key, value] : flat.items()) {
    TextList names;
    boost::split(names, key, [](char c) { return c == '/'; });
    const bool isSensitive = std::any_of(names.begin(), names.end(), [](const auto& name) {
      return std::find(KEYS.begin(), KEYS.end(), name) != KEYS.end();
    });
    if (isSensitive && value.is_string()) add(value);
  }
  return values;
}

/// Runs the program in this process, on a data folder of its own. That is also the working
/// directory, where one of the collectors writes a file.
class Machines : public testing::TestWithParam<std::string> {
 protected:
  Machines() { fs::current_path(folder_.Path()); }

  int Run(const fs::path& machine, const TextList& command) {
    TextList words = {"norvik-agent", "--machine", machine.string(),           "--module",
                      NORVIK_MODULE,  "--data",    (folder_ / "data").string()};
    words.insert(words.end(), command.begin(), command.end());
    return Cli::RunAgentProgram(words, output_, output_);
  }
  int TakeInventory() { return Run(MACHINES / GetParam(), {"inventory"}); }
  /// Records a machine into a folder of this name.
  fs::path Recorded(const fs::path& machine, const char* name, bool redact = false) {
    TextList command = {"record", (folder_ / name).string()};
    if (redact) command.emplace_back("--redact");
    EXPECT_EQ(Run(machine, command), Cli::EXIT_DONE) << Output();
    EXPECT_FALSE(fs::exists((folder_ / name).string() + ".partial"));
    return folder_ / name;
  }
  /// The document of a machine, without what differs from one inventory to the next.
  Json DocumentOf(const fs::path& machine) {
    fs::remove_all(folder_ / "data/previous");
    Run(machine, {"inventory"});
    Json document = Document();
    if (!document.is_object()) return {};  // what cannot be read equals nothing, not even itself
    document["device"].erase("assetDate");
    return document;
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
  FakeWaitClock clock_;
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

  TextList texts;
  for (const Json& named : expected.at("commands")) texts.push_back(CommandText(named, commands));
  EXPECT_EQ(recorded.Texts(), texts);
  EXPECT_EQ(Platform::CountLiveObjects(), Platform::LiveObjects());
}

TEST_P(Machines, AreRecordedWholeAndARecordingAsItself) {
  const fs::path machine = MACHINES / GetParam();
  const fs::path first = Recorded(machine, "first");
  EXPECT_EQ(DocumentOf(first), DocumentOf(machine));
  EXPECT_THAT(DifferencesOf(first, Recorded(first, "second")), IsEmpty());
}

TEST_P(Machines, GiveARedactedDocumentFromARedactedRecording) {
  Json document = DocumentOf(MACHINES / GetParam());
  const fs::path recording = Recorded(MACHINES / GetParam(), "redacted", true);
  std::map<std::string, std::string> replaced;
  Json redacted = DocumentOf(recording);
  for (const char* coordinate : {"latitude", "longitude", "height"}) {
    if (!document.is_object() || !document["location"].is_object()) break;
    EXPECT_NE(redacted["location"][coordinate], document["location"][coordinate]);
    redacted["location"][coordinate] = document["location"][coordinate];
  }
  ExpectSameShape(document, redacted, replaced);
  std::string contents;
  for (const auto& [file, content] : ContentsBelow(recording)) contents += file + content;
  boost::to_lower(contents);
  for (const auto& value : SensitiveValues(document)) {
    EXPECT_THAT(contents, Not(HasSubstr(boost::to_lower_copy(value))));
  }
}

INSTANTIATE_TEST_SUITE_P(Recorded, Machines, ValuesIn(AllMachines()), [](const auto& machine) {
  std::string name = machine.param;
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
});

}  // namespace
