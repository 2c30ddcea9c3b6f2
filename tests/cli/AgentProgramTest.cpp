#include <boost/algorithm/string.hpp>
#include <future>
#include <thread>

#include "cli/ProgramTest.h"
#include "common/database/AgentDatabase.h"
#include "common/database/DataBase.h"
#include "host/data/DataFolder.h"
#include "support/SchemaCheck.h"

namespace {

using namespace Norvik;
using namespace Norvik::Tests;
using PlainJson = nlohmann::json;
namespace fs = boost::filesystem;
using testing::AllOf;
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
  /// Each section of the document is named once, by its key. Those that the host gathers come
  /// first.
  static void ExpectSectionsOf(const PlainJson& document, const PlainJson& sections) {
    Words names;
    for (const auto& section : sections) names.push_back(section["name"]);
    Words gathered(names.begin(), names.begin() + 7);
    std::sort(gathered.begin(), gathered.end());
    EXPECT_EQ(gathered, (Words{"bios", "disk", "memory, memorySlot", "networkAdapter", "os",
                               "processorSlot", "setup, portConnectors"}));
    Words keys;
    boost::split(
        keys, boost::join(names, ", "), [](char c) { return c == ',' || c == ' '; },
        boost::token_compress_on);
    std::sort(keys.begin(), keys.end());
    Words wanted;
    for (const auto& section : document.items()) wanted.push_back(section.key());
    EXPECT_EQ(keys, wanted);
  }
  std::string Written(const std::string& name, const std::string& text) const {
    WriteFile(folder_ / name, text);
    return (folder_ / name).string();
  }
};

TEST_F(AgentProgram, TakesAnInventoryThatOpenReadsBack) {
  const PlainJson report = Ask({"inventory"});
  const std::string file = report["file"];
  EXPECT_EQ(fs::path(file).parent_path(), Data() / "outbox");
  EXPECT_EQ(fs::path(file).extension(), ".jsonkob");
  EXPECT_EQ(report["bytes"], fs::file_size(file));

  const std::string text = RunWell({"open", file}).output;
  const PlainJson document = PlainJson::parse(text);
  EXPECT_EQ(document.size(), 27u);
  EXPECT_FALSE(document["processorSlot"].empty());
  EXPECT_FALSE(document["software"].empty());
  EXPECT_EQ(document["device"]["guid"], Ask({"status"})["identifier"]);
  EXPECT_EQ(report["records"]["software"], document["software"].size());
  ExpectSectionsOf(document, report["sections"]);
  EXPECT_EQ(text, ContentOf(Data() / "previous" / fs::path(file).filename()));

  const std::string pretty = RunWell({"open", file, "--pretty"}).output;
  EXPECT_EQ(PlainJson::parse(pretty), document);
  EXPECT_GT(std::count(pretty.begin(), pretty.end(), '\n'), 100);
}

TEST_F(AgentProgram, ShowsEachSectionOfTheInventoryWithTimeAndRecords) {
  const Answer answer = RunWell({"inventory", "--incremental"});
  EXPECT_THAT(answer.output, HasSubstr("retrieving software\n"));
  EXPECT_THAT(answer.output, testing::ContainsRegex("processorSlot +[0-9.]+ s +[1-9]"));
  EXPECT_THAT(answer.output, testing::ContainsRegex("memory, memorySlot +[0-9.]+ s +one record, "));
  EXPECT_THAT(answer.output,
              HasSubstr("total instead of incremental: no inventory was ever taken"));
  EXPECT_THAT(answer.errors, Not(HasSubstr("sh: ")));
  EXPECT_THAT(answer.output, HasSubstr("status: 2 finished"));
  EXPECT_THAT(answer.output, HasSubstr("bytes, total\n"));
}

TEST_F(AgentProgram, TheDocumentsOfThisMachineFollowTheirSchemas) {
  const auto take = [&](std::vector<std::string> words, const std::string& kind) {
    words.insert(words.begin(), "inventory");
    const PlainJson report = Ask(words);
    EXPECT_EQ(report["kind"], kind) << report;
    EXPECT_EQ(report["success"], true);
    EXPECT_EQ(report["statuses"].back()["status"], 2);
    return RunWell({"open", report["file"]}).output;
  };
  ExpectValid("inventory", take({}, "total"));
  const auto other = Written("other.json", R"({"profileId": 8})");
  ExpectValid("incremental-inventory", take({"--incremental", "--config", other}, "incremental"));
}

TEST_F(AgentProgram, DiffAndApplyTakeSealedAndPlainDocuments) {
  const std::string sealed = Ask({"inventory"})["file"];
  const PlainJson before = PlainJson::parse(RunWell({"open", sealed}).output);
  PlainJson after = before;
  after["agentConfiguration"]["profileId"] = 8;
  const std::string plain = Written("after.json", after.dump());
  EXPECT_EQ(RunWell({"diff", sealed, sealed}).output, "null\n");

  const std::string changes = (folder_ / "changes.json").string();
  EXPECT_THAT(RunWell({"diff", sealed, plain, "--output", changes}).output, IsEmpty());
  EXPECT_EQ(PlainJson::parse(ContentOf(changes))["update"].size(), 1u);
  EXPECT_EQ(PlainJson::parse(RunWell({"apply", sealed, changes}).output), after);

  const std::string target = (folder_ / "merged.json").string();
  fs::create_symlink(sealed, folder_ / "link");
  EXPECT_EQ(RunWell({"diff", (folder_ / "link").string(), sealed}).output, "null\n");
  ExpectRefusal({"diff", sealed, plain, "--output", (folder_ / "link").string()}, 2, "--output");
  ExpectRefusal({"apply", changes, sealed, "--output", target}, 1, "no full inventory");
  ExpectRefusal({"diff", sealed, (folder_ / "none").string(), "--output", target}, 1, "none");
  EXPECT_FALSE(fs::exists(target));
}

TEST_F(AgentProgram, StatusTellsWhatIsThereAndMakesNothingAndOnlyTheUserMayReadIt) {
  const PlainJson before = Ask({"status"});
  EXPECT_FALSE(fs::exists(Data()));
  EXPECT_TRUE(before["identifier"].is_null() && before["lastInventory"].is_null());
  EXPECT_EQ(before["configured"], false);

  RunWell({"inventory"});
  const PlainJson after = Ask({"status"});
  EXPECT_EQ(after["outbox"].size(), 1u);
  EXPECT_EQ(after["previous"].size(), 1u);
  EXPECT_GT(after["lastInventory"]["seconds"], 1'700'000'000);
  EXPECT_THAT(RunWell({"status"}).output, HasSubstr(after["identifier"]));
  EXPECT_EQ(ModeOf(Data()), 0700u);
  EXPECT_EQ(ModeOf(Data() / Host::IDENTITY_FILE), 0600u);
  EXPECT_EQ(ModeOf(Data() / Host::LOG_FOLDER / Host::LOG_FILE), 0600u);
}

TEST_F(AgentProgram, ListsTheActionsOfEachInstance) {
  const std::string service = RunWell({"actions"}).output;
  const std::string user = RunWell({"actions", "--user-process"}).output;
  EXPECT_THAT(service, AllOf(HasSubstr(" 1066  ACTION_"), Not(HasSubstr(" 1067  "))));
  EXPECT_THAT(user, AllOf(HasSubstr(" 1067  ACTION_"), Not(HasSubstr(" 1066  "))));
  EXPECT_EQ(Ask({"actions"})[0]["code"], 1000);
}

TEST_F(AgentProgram, RunsAnActionAndPrintsItsResponse) {
  const PlainJson inventory = Ask({"action", "action_total_inventory"});
  const PlainJson statuses = {{{"status", 7}, {"message", ""}}, {{"status", 2}, {"message", ""}}};
  EXPECT_EQ(inventory, (PlainJson{{"code", 1071},
                                  {"text", ""},
                                  {"success", false},
                                  {"titles", PlainJson::array()},
                                  {"rows", PlainJson::array()},
                                  {"statuses", statuses}}));
  EXPECT_EQ(FilesIn(Data() / "outbox").size(), 1u);
}

TEST_F(AgentProgram, StoresAConfigurationAndHandsItToTheModule) {
  const auto file = Written("good.json",
                            R"({"profileId": 7, "server": {"address": "a.example", "port": 8443},
         "inventorySchedule": {"periodSeconds": 86400, "next": 1767225600}})");
  RunWell({"configure", file});
  EXPECT_EQ(ContentOf(Data() / Host::CONFIGURATION_FILE), ContentOf(file));
  const PlainJson status = Ask({"status"});
  EXPECT_EQ(status["configured"], true);
  EXPECT_EQ(status["profileId"], 7);
  const auto entry = std::find_if(status["periodic"].begin(), status["periodic"].end(),
                                  [](const PlainJson& each) { return each["code"] == 1036; });
  ASSERT_NE(entry, status["periodic"].end()) << status;
  EXPECT_EQ((*entry)["periodSeconds"], 86400);
  EXPECT_EQ((*entry)["name"], "ACTION_INCREMENTAL_INVENTORY");
  EXPECT_GT((*entry)["next"], 1767225600);  // the first time in the future

  const auto profileIn = [&](const Words& words) {
    return Ask({"open", Ask(words)["file"]})["agentConfiguration"]["profileId"];
  };
  EXPECT_EQ(profileIn({"inventory"}), 7);
  const auto other = Written("other.json", R"({"profileId": 8})");
  EXPECT_EQ(profileIn({"inventory", "--config", other}), 8);
  EXPECT_EQ(ContentOf(Data() / Host::CONFIGURATION_FILE), ContentOf(file));
}

TEST_F(AgentProgram, AFileThatWasAlteredDoesNotOpen) {
  const std::string file = Ask({"inventory"})["file"];
  std::string altered = ContentOf(file);
  altered[altered.size() / 2] = static_cast<char>(altered[altered.size() / 2] ^ 1);
  ExpectRefusal({"open", Written("damaged.jsonkob", altered)}, 1, "damaged.jsonkob");
}

TEST_F(AgentProgram, AnOutboxThatCannotBeWrittenFailsTheInventoryAndKeepsThePreviousDocument) {
  RunWell({"inventory"});
  const fs::path previous = FilesIn(Data() / "previous").at(0);
  const std::string before = ContentOf(previous);
  fs::remove_all(Data() / "outbox");
  WriteFile(Data() / "outbox", "in the way");

  const Answer answer = Run({"inventory", "--json"});
  EXPECT_EQ(answer.code, 1);
  const PlainJson report = PlainJson::parse(answer.output, nullptr, false);
  EXPECT_EQ(report["success"], false);
  EXPECT_EQ(report["file"], "");
  EXPECT_THAT(answer.errors, Not(IsEmpty()));
  EXPECT_THAT(ContentOf(Data() / "log/agent.log"), HasSubstr("[2]"));
  EXPECT_EQ(ContentOf(Data() / "outbox"), "in the way");
  EXPECT_EQ(PlainJson::parse(ContentOf(previous)).size(), PlainJson::parse(before).size());
}

TEST_F(AgentProgram, ACorruptDatabaseIsPutAsideAndTold) {
  RunWell({"inventory"});
  const fs::path file = Data() / Common::SQLiteNames::SQLITE_CURRENT_DATABASE_NAME;
  WriteFile(file, std::string(4096, 'x'));
  ExpectRefusal({"status"}, 1, "it is damaged");
  EXPECT_EQ(ContentOf(file), std::string(4096, 'x'));
  ExpectRefusal({"inventory"}, 1, file.string() + ".corrupt-");
  RunWell({"inventory"});
}

TEST_F(AgentProgram, AWaitForTheDatabaseIsToldOnce) {
  RunWell({"actions"});
  const Common::AgentDatabase dataBase(Data());
  auto holder = std::make_unique<Common::V2::DataBase>();
  holder->ExecuteSentence("delete from DATA");
  auto answer = std::async(std::launch::async, [&] { return Run({"action", "1071"}); });
  std::this_thread::sleep_for(std::chrono::milliseconds(2500));
  holder.reset();
  EXPECT_EQ(answer.get().errors,
            "norvik-agent: waiting for the database, which another program holds\n");
}

TEST_F(AgentProgram, WrongUseAndFailuresAreToldOnOneLineAndLeaveNothing) {
  for (const auto& row : DataOf("cli/refused-commands.json")) {
    SCOPED_TRACE(row[0]);
    fs::remove_all(Data());
    for (const auto& [name, content] : row[1].items()) {
      fs::create_directories((folder_ / name).parent_path());
      Written(name, content);
    }
    Words words = row[2];
    for (auto& word : words) boost::replace_first(word, "$", folder_.Path().string());
    ExpectRefusal(words, row[3], row[4]);
    EXPECT_FALSE(fs::exists(Data() / Host::CONFIGURATION_FILE) && row[3] == 2);
  }
}

}  // namespace
