#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <boost/filesystem/string_file.hpp>
#include <nlohmann/json.hpp>
#include <set>

#include "common/database/SQLiteNames.h"
#include "host/DataFolder.h"
#include "platform/ChildProcess.h"
#include "support/SchemaCheck.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace Norvik;
using Json = nlohmann::json;
namespace fs = boost::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

struct Answer {
  int code = -1;
  std::string output;
  std::string errors;

  Json AsJson() const {
    EXPECT_EQ(std::count(output.begin(), output.end(), '\n'), 1) << output;
    return Json::parse(output, nullptr, false);
  }
};

/// Runs the program itself on a data folder of its own.
class AgentProgram : public testing::Test {
 protected:
  Answer Run(std::vector<std::string> words) const {
    words.insert(words.begin(), std::string(NORVIK_BINARY_DIR) + "/bin/norvik-agent");
    words.insert(words.end(), {"--data", Data().string()});
    Answer answer;
    Platform::ChildCommand command;
    command.words = std::move(words);
    command.onOutput = [&](std::string_view piece) { answer.output += piece; };
    command.onErrors = [&](std::string_view piece) { answer.errors += piece; };
    const auto result = Platform::RunChild(command);
    EXPECT_TRUE(result.started) << result.problem;
    answer.code = result.exitCode;
    return answer;
  }
  Answer RunWell(const std::vector<std::string>& words) const {
    const Answer answer = Run(words);
    EXPECT_EQ(answer.code, 0) << answer.errors;
    return answer;
  }
  /// A failure is told on one line, and nothing else is said.
  void ExpectRefusal(const std::vector<std::string>& words, int code,
                     const std::string& text) const {
    const Answer answer = Run(words);
    EXPECT_EQ(answer.code, code) << answer.errors;
    EXPECT_THAT(answer.output, IsEmpty());
    EXPECT_THAT(answer.errors, HasSubstr(text));
    EXPECT_EQ(std::count(answer.errors.begin(), answer.errors.end(), '\n'), 1) << answer.errors;
  }

  fs::path Data() const { return folder_ / "data"; }
  std::vector<fs::path> FilesIn(const fs::path& folder) const {
    std::vector<fs::path> files;
    for (const auto& item : fs::directory_iterator(folder)) files.push_back(item.path());
    return files;
  }
  static std::string Content(const fs::path& file) {
    std::string text;
    fs::load_string_file(file, text);
    return text;
  }
  fs::path WriteFile(const std::string& name, const std::string& text) const {
    fs::save_string_file(folder_ / name, text);
    return folder_ / name;
  }

  Tests::TemporaryFolder folder_;
};

TEST_F(AgentProgram, TakesAnInventoryThatOpenReadsBack) {
  const Json report = RunWell({"inventory", "--json"}).AsJson();
  EXPECT_EQ(report["success"], true);
  EXPECT_EQ(report["kind"], "total");
  const std::string file = report["file"];
  EXPECT_EQ(fs::path(file).parent_path(), Data() / "outbox");
  EXPECT_EQ(fs::path(file).extension(), ".jsonkob");
  EXPECT_EQ(report["bytes"], fs::file_size(file));

  const std::string text = RunWell({"open", file}).output;
  const Json document = Json::parse(text);
  EXPECT_EQ(document.size(), 27u);
  EXPECT_FALSE(document["processorSlot"].empty());
  EXPECT_FALSE(document["software"].empty());
  EXPECT_EQ(document["device"]["guid"], RunWell({"status", "--json"}).AsJson()["identifier"]);
  EXPECT_EQ(report["records"]["software"], document["software"].size());
  EXPECT_EQ(text, Content(Data() / "previous" / fs::path(file).filename()));

  const std::string pretty = RunWell({"open", file, "--pretty"}).output;
  EXPECT_EQ(Json::parse(pretty), document);
  EXPECT_GT(std::count(pretty.begin(), pretty.end(), '\n'), 100);
}

TEST_F(AgentProgram, ShowsEachSectionOfTheInventoryWithTimeAndRecords) {
  const Answer answer = RunWell({"inventory", "--incremental"});
  EXPECT_THAT(answer.output, HasSubstr("retrieving software registered\n"));
  EXPECT_THAT(answer.output, testing::ContainsRegex("processor +[0-9.]+ s +[1-9]"));
  EXPECT_THAT(answer.output,
              HasSubstr("total instead of incremental: no inventory was ever taken"));
  EXPECT_THAT(answer.output, HasSubstr("status: 2 finished"));
  EXPECT_THAT(answer.output, HasSubstr("bytes, total\n"));
}

TEST_F(AgentProgram, AnIncrementalInventoryFollowsATotalOne) {
  RunWell({"inventory"});
  const Json report = RunWell({"inventory", "--incremental", "--json"}).AsJson();
  EXPECT_EQ(report["requested"], "incremental");
  EXPECT_EQ(report["success"], true);
  // A total one goes in its place only with a reason.
  EXPECT_EQ(report["kind"] == "total", report["fallback"] != "");
  EXPECT_FALSE(report["statuses"].empty());
  EXPECT_EQ(report["statuses"].back()["status"], 2);
}

TEST_F(AgentProgram, TheDocumentsOfThisMachineFollowTheirSchemas) {
  const auto take = [&](std::vector<std::string> words, const std::string& kind) {
    words.insert(words.begin(), {"inventory", "--json"});
    const Json report = RunWell(words).AsJson();
    EXPECT_EQ(report["kind"], kind) << report;
    return RunWell({"open", report["file"]}).output;
  };
  Tests::ExpectValid("inventory", take({}, "total"));
  const auto other = WriteFile("other.json", R"({"profileId": 8})");
  Tests::ExpectValid("incremental-inventory",
                     take({"--incremental", "--config", other.string()}, "incremental"));
}

TEST_F(AgentProgram, DiffAndApplyTakeSealedAndPlainDocuments) {
  const std::string sealed = RunWell({"inventory", "--json"}).AsJson()["file"];
  const Json before = Json::parse(RunWell({"open", sealed}).output);
  Json after = before;
  after["agentConfiguration"]["profileId"] = 8;
  const std::string plain = WriteFile("after.json", after.dump()).string();
  EXPECT_EQ(RunWell({"diff", sealed, sealed}).output, "null\n");

  const std::string changes = (folder_ / "changes.json").string();
  EXPECT_THAT(RunWell({"diff", sealed, plain, "--output", changes}).output, IsEmpty());
  EXPECT_EQ(Json::parse(Content(changes))["update"].size(), 1u);
  EXPECT_EQ(Json::parse(RunWell({"apply", sealed, changes}).output), after);

  const std::string target = (folder_ / "merged.json").string();
  ExpectRefusal({"apply", changes, sealed, "--output", target}, 1, "no full inventory");
  ExpectRefusal({"diff", sealed, (folder_ / "none").string(), "--output", target}, 1, "none");
  EXPECT_FALSE(fs::exists(target));
}

TEST_F(AgentProgram, StatusTellsWhatIsThereAndMakesNothing) {
  const Json before = RunWell({"status", "--json"}).AsJson();
  EXPECT_FALSE(fs::exists(Data()));
  EXPECT_TRUE(before["identifier"].is_null() && before["lastInventory"].is_null());
  EXPECT_EQ(before["configured"], false);

  RunWell({"inventory"});
  const Json after = RunWell({"status", "--json"}).AsJson();
  EXPECT_EQ(after["outbox"].size(), 1u);
  EXPECT_EQ(after["previous"].size(), 1u);
  EXPECT_GT(after["lastInventory"]["seconds"], 1'700'000'000);
  EXPECT_THAT(RunWell({"status"}).output, HasSubstr(after["identifier"]));
}

TEST_F(AgentProgram, KeepsItsDataToItsUser) {
  RunWell({"inventory"});
  const auto modeOf = [](const fs::path& path) {
    struct stat state {};
    ::stat(path.c_str(), &state);
    return state.st_mode & 0777;
  };
  EXPECT_EQ(modeOf(Data()), 0700u);
  EXPECT_EQ(modeOf(Data() / Host::IDENTITY_FILE), 0600u);
  EXPECT_EQ(modeOf(Data() / Host::LOG_FOLDER / Host::LOG_FILE), 0600u);
}

TEST_F(AgentProgram, ListsTheActionsOfEachInstance) {
  const auto codesOf = [&](const std::vector<std::string>& words) {
    std::vector<unsigned int> codes;
    for (const auto& entry : RunWell(words).AsJson()) {
      EXPECT_THAT(entry["name"].get<std::string>(), HasSubstr("ACTION_"));
      codes.push_back(entry["code"]);
    }
    EXPECT_TRUE(std::is_sorted(codes.begin(), codes.end()));
    return std::set<unsigned int>(codes.begin(), codes.end());
  };
  const auto service = codesOf({"actions", "--json"});
  const auto user = codesOf({"actions", "--json", "--user-process"});
  EXPECT_TRUE(service.count(1071) && user.count(1071));
  EXPECT_TRUE(service.count(1066) && !service.count(1067));
  EXPECT_TRUE(user.count(1067) && !user.count(1066));
  EXPECT_THAT(RunWell({"actions"}).output, HasSubstr(" 1071  ACTION_TOTAL_INVENTORY\n"));
}

TEST_F(AgentProgram, RunsAnActionAndPrintsItsResponse) {
  const Json inventory = RunWell({"action", "action_total_inventory", "--json"}).AsJson();
  const Json statuses = {{{"status", 7}, {"message", ""}}, {{"status", 2}, {"message", ""}}};
  EXPECT_EQ(inventory, (Json{{"code", 1071},
                             {"text", ""},
                             {"success", false},
                             {"titles", Json::array()},
                             {"rows", Json::array()},
                             {"statuses", statuses}}));
  EXPECT_EQ(FilesIn(Data() / "outbox").size(), 1u);

  const Answer unknown = RunWell({"action", "9999"});
  EXPECT_THAT(unknown.output, HasSubstr("success: false"));
  EXPECT_THAT(unknown.errors, HasSubstr("no handler is registered for the action 9999"));
  EXPECT_THAT(Content(Data() / "log/agent.log"), HasSubstr("[3]"));
}

TEST_F(AgentProgram, StoresAConfigurationAndHandsItToTheModule) {
  const auto file = WriteFile("good.json",
                              R"({"profileId": 7, "server": {"address": "a.example", "port": 8443},
         "inventorySchedule": {"periodSeconds": 86400, "next": 1767225600}})");
  RunWell({"configure", file.string()});
  EXPECT_EQ(Content(Data() / Host::CONFIGURATION_FILE), Content(file));
  const Json status = RunWell({"status", "--json"}).AsJson();
  EXPECT_EQ(status["configured"], true);
  EXPECT_EQ(status["profileId"], 7);
  bool found = false;
  for (const auto& entry : status["periodic"]) {
    if (entry["code"] != 1036) continue;
    found = true;
    EXPECT_EQ(entry["periodSeconds"], 86400);
    EXPECT_EQ(entry["name"], "ACTION_INCREMENTAL_INVENTORY");
    EXPECT_GT(entry["next"], 1767225600);  // the first time that is not past
  }
  EXPECT_TRUE(found) << status;

  const Json report = RunWell({"inventory", "--json"}).AsJson();
  const Json document = Json::parse(RunWell({"open", report["file"]}).output);
  EXPECT_EQ(document["agentConfiguration"]["profileId"], 7);
  const auto other = WriteFile("other.json", R"({"profileId": 8})");
  const Json once = RunWell({"inventory", "--json", "--config", other.string()}).AsJson();
  EXPECT_EQ(Json::parse(RunWell({"open", once["file"]}).output)["agentConfiguration"]["profileId"],
            8);
  EXPECT_EQ(Content(Data() / Host::CONFIGURATION_FILE), Content(file));
}

TEST_F(AgentProgram, AWrongConfigurationIsNotStored) {
  const auto file = WriteFile("bad.json", R"({"inventorySchedule": {"periodSeconds": "daily"}})");
  const std::string error = "inventorySchedule.periodSeconds wants a whole number";
  ExpectRefusal({"configure", file.string()}, 2, error);
  ExpectRefusal({"inventory", "--config", file.string()}, 2, error);
  EXPECT_FALSE(fs::exists(Data() / Host::CONFIGURATION_FILE));
  ExpectRefusal({"configure", (folder_ / "none.json").string()}, 2, "none.json");
}

TEST_F(AgentProgram, AFileThatWasCutOrAlteredDoesNotOpen) {
  const std::string file = RunWell({"inventory", "--json"}).AsJson()["file"];
  const std::string whole = Content(file);
  std::string altered = whole;
  altered[altered.size() / 2] = static_cast<char>(altered[altered.size() / 2] ^ 1);
  const std::string texts[] = {altered, whole.substr(0, whole.size() - 1), whole + "x", ""};
  for (const auto& text : texts) {
    ExpectRefusal({"open", WriteFile("damaged.jsonkob", text).string()}, 1, "damaged.jsonkob");
  }
  ExpectRefusal({"open", (folder_ / "none").string()}, 1, "none");
}

TEST_F(AgentProgram, AnOutboxThatCannotBeWrittenFailsTheInventoryAndKeepsThePreviousDocument) {
  RunWell({"inventory"});
  const fs::path previous = FilesIn(Data() / "previous").at(0);
  const std::string before = Content(previous);
  fs::remove_all(Data() / "outbox");
  fs::save_string_file(Data() / "outbox", "in the way");

  const Answer answer = Run({"inventory", "--json"});
  EXPECT_EQ(answer.code, 1);
  EXPECT_EQ(answer.AsJson()["success"], false);
  EXPECT_EQ(answer.AsJson()["file"], "");
  EXPECT_THAT(answer.errors, Not(IsEmpty()));
  EXPECT_THAT(Content(Data() / "log/agent.log"), HasSubstr("[2]"));
  EXPECT_EQ(Content(Data() / "outbox"), "in the way");
  EXPECT_EQ(Json::parse(Content(previous)).size(), Json::parse(before).size());
}

TEST_F(AgentProgram, ACorruptDatabaseIsPutAsideAndTold) {
  RunWell({"inventory"});
  const fs::path file = Data() / Common::SQLiteNames::SQLITE_CURRENT_DATABASE_NAME;
  fs::save_string_file(file, std::string(4096, 'x'));
  ExpectRefusal({"inventory"}, 1, file.string() + ".corrupt-");
  const auto files = FilesIn(Data());
  const auto kept = std::find_if(files.begin(), files.end(), [](const fs::path& path) {
    return path.string().find(".corrupt-") != std::string::npos;
  });
  ASSERT_NE(kept, files.end());
  EXPECT_EQ(Content(*kept), std::string(4096, 'x'));
  RunWell({"inventory"});
}

TEST_F(AgentProgram, TwoAgentsDoNotWorkOnOneDataFolder) {
  RunWell({"actions"});
  const Host::DataFolderLock other(Data());
  ExpectRefusal({"inventory"}, 1, "another agent works with the data folder");
  RunWell({"status"});
}

TEST_F(AgentProgram, WrongUseAndFailuresAreToldOnOneLine) {
  ExpectRefusal({}, 2, "a command is wanted");
  ExpectRefusal({"inventory", "--everything"}, 2, "--everything");
  ExpectRefusal({"action", "ACTION_NONE"}, 2, "ACTION wants");
  ExpectRefusal({"action", "1011", "x:bool=1"}, 2, "x:bool wants true or false");
  ExpectRefusal({"status", "--log-level", "1"}, 2, "--log-level");
  EXPECT_FALSE(fs::exists(Data()));
  ExpectRefusal({"actions", "--module", "/nowhere.so"}, 1, "cannot load the module: ");
  WriteFile("data/identity.json", "{}");
  ExpectRefusal({"actions"}, 1, "identity.json is damaged");
}

}  // namespace
