#include <set>

#include "common/database/SQLiteNames.h"
#include "host/DataFolder.h"
#include "host/ProgramTest.h"
#include "support/SchemaCheck.h"

namespace {

using namespace Norvik;
using namespace Norvik::Tests;
using Json = nlohmann::json;
namespace fs = boost::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class AgentProgram : public ProgramTest {
 protected:
  std::vector<fs::path> FilesIn(const fs::path& folder) const {
    std::vector<fs::path> files;
    for (const auto& item : fs::directory_iterator(folder)) files.push_back(item.path());
    return files;
  }
  std::string Written(const std::string& name, const std::string& text) const {
    WriteFile(folder_ / name, text);
    return (folder_ / name).string();
  }
};

TEST_F(AgentProgram, TakesAnInventoryThatOpenReadsBack) {
  const Json report = Ask({"inventory"});
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
  EXPECT_EQ(document["device"]["guid"], Ask({"status"})["identifier"]);
  EXPECT_EQ(report["records"]["software"], document["software"].size());
  EXPECT_EQ(text, ContentOf(Data() / "previous" / fs::path(file).filename()));

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
  const Json report = Ask({"inventory", "--incremental"});
  EXPECT_EQ(report["requested"], "incremental");
  EXPECT_EQ(report["success"], true);
  // A total one goes in its place only with a reason.
  EXPECT_EQ(report["kind"] == "total", report["fallback"] != "");
  EXPECT_FALSE(report["statuses"].empty());
  EXPECT_EQ(report["statuses"].back()["status"], 2);
}

TEST_F(AgentProgram, TheDocumentsOfThisMachineFollowTheirSchemas) {
  const auto take = [&](std::vector<std::string> words, const std::string& kind) {
    words.insert(words.begin(), "inventory");
    const Json report = Ask(words);
    EXPECT_EQ(report["kind"], kind) << report;
    return RunWell({"open", report["file"]}).output;
  };
  ExpectValid("inventory", take({}, "total"));
  const auto other = Written("other.json", R"({"profileId": 8})");
  ExpectValid("incremental-inventory", take({"--incremental", "--config", other}, "incremental"));
}

TEST_F(AgentProgram, DiffAndApplyTakeSealedAndPlainDocuments) {
  const std::string sealed = Ask({"inventory"})["file"];
  const Json before = Json::parse(RunWell({"open", sealed}).output);
  Json after = before;
  after["agentConfiguration"]["profileId"] = 8;
  const std::string plain = Written("after.json", after.dump());
  EXPECT_EQ(RunWell({"diff", sealed, sealed}).output, "null\n");

  const std::string changes = (folder_ / "changes.json").string();
  EXPECT_THAT(RunWell({"diff", sealed, plain, "--output", changes}).output, IsEmpty());
  EXPECT_EQ(Json::parse(ContentOf(changes))["update"].size(), 1u);
  EXPECT_EQ(Json::parse(RunWell({"apply", sealed, changes}).output), after);

  const std::string target = (folder_ / "merged.json").string();
  fs::create_symlink(sealed, folder_ / "link");
  EXPECT_EQ(RunWell({"diff", (folder_ / "link").string(), sealed}).output, "null\n");
  ExpectRefusal({"diff", sealed, plain, "--output", (folder_ / "link").string()}, 2, "--output");
  ExpectRefusal({"apply", changes, sealed, "--output", target}, 1, "no full inventory");
  ExpectRefusal({"diff", sealed, (folder_ / "none").string(), "--output", target}, 1, "none");
  EXPECT_FALSE(fs::exists(target));
}

TEST_F(AgentProgram, StatusTellsWhatIsThereAndMakesNothing) {
  const Json before = Ask({"status"});
  EXPECT_FALSE(fs::exists(Data()));
  EXPECT_TRUE(before["identifier"].is_null() && before["lastInventory"].is_null());
  EXPECT_EQ(before["configured"], false);

  RunWell({"inventory"});
  const Json after = Ask({"status"});
  EXPECT_EQ(after["outbox"].size(), 1u);
  EXPECT_EQ(after["previous"].size(), 1u);
  EXPECT_GT(after["lastInventory"]["seconds"], 1'700'000'000);
  EXPECT_THAT(RunWell({"status"}).output, HasSubstr(after["identifier"]));
}

TEST_F(AgentProgram, KeepsItsDataToItsUser) {
  RunWell({"inventory"});
  EXPECT_EQ(ModeOf(Data()), 0700u);
  EXPECT_EQ(ModeOf(Data() / Host::IDENTITY_FILE), 0600u);
  EXPECT_EQ(ModeOf(Data() / Host::LOG_FOLDER / Host::LOG_FILE), 0600u);
}

TEST_F(AgentProgram, ListsTheActionsOfEachInstance) {
  const auto codesOf = [&](const std::vector<std::string>& words) {
    std::vector<unsigned int> codes;
    for (const auto& entry : Ask(words)) {
      EXPECT_THAT(entry["name"].get<std::string>(), HasSubstr("ACTION_"));
      codes.push_back(entry["code"]);
    }
    EXPECT_TRUE(std::is_sorted(codes.begin(), codes.end()));
    return std::set<unsigned int>(codes.begin(), codes.end());
  };
  const auto service = codesOf({"actions"});
  const auto user = codesOf({"actions", "--user-process"});
  EXPECT_TRUE(service.count(1071) && user.count(1071));
  EXPECT_TRUE(service.count(1066) && !service.count(1067));
  EXPECT_TRUE(user.count(1067) && !user.count(1066));
  EXPECT_THAT(RunWell({"actions"}).output, HasSubstr(" 1071  ACTION_TOTAL_INVENTORY\n"));
}

TEST_F(AgentProgram, RunsAnActionAndPrintsItsResponse) {
  const Json inventory = Ask({"action", "action_total_inventory"});
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
  EXPECT_THAT(ContentOf(Data() / "log/agent.log"), HasSubstr("[3]"));
}

TEST_F(AgentProgram, StoresAConfigurationAndHandsItToTheModule) {
  const auto file = Written("good.json",
                            R"({"profileId": 7, "server": {"address": "a.example", "port": 8443},
         "inventorySchedule": {"periodSeconds": 86400, "next": 1767225600}})");
  RunWell({"configure", file});
  EXPECT_EQ(ContentOf(Data() / Host::CONFIGURATION_FILE), ContentOf(file));
  const Json status = Ask({"status"});
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

  const Json report = Ask({"inventory"});
  const Json document = Json::parse(RunWell({"open", report["file"]}).output);
  EXPECT_EQ(document["agentConfiguration"]["profileId"], 7);
  const auto other = Written("other.json", R"({"profileId": 8})");
  const Json once = Ask({"inventory", "--config", other});
  EXPECT_EQ(Json::parse(RunWell({"open", once["file"]}).output)["agentConfiguration"]["profileId"],
            8);
  EXPECT_EQ(ContentOf(Data() / Host::CONFIGURATION_FILE), ContentOf(file));
}

TEST_F(AgentProgram, AWrongConfigurationIsNotStored) {
  const auto file = Written("bad.json", R"({"inventorySchedule": {"periodSeconds": "daily"}})");
  const std::string error = "inventorySchedule.periodSeconds wants a whole number";
  ExpectRefusal({"configure", file}, 2, error);
  ExpectRefusal({"inventory", "--config", file}, 2, error);
  EXPECT_FALSE(fs::exists(Data() / Host::CONFIGURATION_FILE));
  ExpectRefusal({"configure", (folder_ / "none.json").string()}, 2, "none.json");
}

TEST_F(AgentProgram, AFileThatWasAlteredDoesNotOpen) {
  const std::string file = Ask({"inventory"})["file"];
  std::string altered = ContentOf(file);
  altered[altered.size() / 2] = static_cast<char>(altered[altered.size() / 2] ^ 1);
  ExpectRefusal({"open", Written("damaged.jsonkob", altered)}, 1, "damaged.jsonkob");
  ExpectRefusal({"open", (folder_ / "none").string()}, 1, "none");
}

TEST_F(AgentProgram, AnOutboxThatCannotBeWrittenFailsTheInventoryAndKeepsThePreviousDocument) {
  RunWell({"inventory"});
  const fs::path previous = FilesIn(Data() / "previous").at(0);
  const std::string before = ContentOf(previous);
  fs::remove_all(Data() / "outbox");
  WriteFile(Data() / "outbox", "in the way");

  const Answer answer = Run({"inventory", "--json"});
  EXPECT_EQ(answer.code, 1);
  const Json report = Json::parse(answer.output, nullptr, false);
  EXPECT_EQ(report["success"], false);
  EXPECT_EQ(report["file"], "");
  EXPECT_THAT(answer.errors, Not(IsEmpty()));
  EXPECT_THAT(ContentOf(Data() / "log/agent.log"), HasSubstr("[2]"));
  EXPECT_EQ(ContentOf(Data() / "outbox"), "in the way");
  EXPECT_EQ(Json::parse(ContentOf(previous)).size(), Json::parse(before).size());
}

TEST_F(AgentProgram, ACorruptDatabaseIsPutAsideAndTold) {
  RunWell({"inventory"});
  const fs::path file = Data() / Common::SQLiteNames::SQLITE_CURRENT_DATABASE_NAME;
  WriteFile(file, std::string(4096, 'x'));
  ExpectRefusal({"inventory"}, 1, file.string() + ".corrupt-");
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
  Written("data/identity.json", "{}");
  ExpectRefusal({"actions"}, 1, "identity.json is damaged");
  Written("data/configuration.json", "{");
  ExpectRefusal({"explain", "/"}, 1, "configuration.json");
}

}  // namespace
