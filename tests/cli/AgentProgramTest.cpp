#include <boost/algorithm/string.hpp>
#include <future>

#include "cli/ProgramTest.h"
#include "common/database/AgentDatabase.h"
#include "common/database/DataBase.h"
#include "support/SchemaCheck.h"
#include "support/Steps.h"

namespace {

using namespace Norvik;
using namespace Norvik::Tests;

class AgentProgram : public ProgramTest {
 protected:
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

TEST_F(AgentProgram, DiffAndApplyTakeSealedAndPlainDocuments) {
  const std::string sealed = Ask({"inventory"})["file"];
  const PlainJson before = PlainJson::parse(RunWell({"open", sealed}).output);
  PlainJson after = before;
  after["agentConfiguration"]["profileId"] = 8;
  const std::string plain = (folder_ / "after.json").string();
  WriteFile(plain, after.dump());
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
  std::string altered = ContentOf(sealed);
  altered[altered.size() / 2] = static_cast<char>(altered[altered.size() / 2] ^ 1);
  WriteFile(folder_ / "altered", altered);
  ExpectRefusal({"apply", (folder_ / "altered").string(), changes}, 1, "altered");
  EXPECT_FALSE(fs::exists(target));
}

TEST_F(AgentProgram, AWaitForTheDatabaseIsReportedOnce) {
  RunWell({"inventory"});
  const Common::AgentDatabase dataBase(Data());
  auto holder = std::make_unique<Common::V2::DataBase>();
  holder->ExecuteSentence("delete from DATA");
  auto answer = std::async(std::launch::async, [&] { return Run({"action", "1071"}); });
  std::this_thread::sleep_for(milliseconds(2500));
  holder.reset();
  EXPECT_EQ(answer.get().errors,
            "norvik-agent: waiting for the database, which another program holds\n");
}

TEST_F(AgentProgram, MakesNoTemporaryFileOutsideTheDataFolder) {
  const fs::path temporary = folder_ / "temporary";
  fs::create_directory(temporary);
  fs::last_write_time(temporary, 1);
  ::setenv("SQLITE_TMPDIR", temporary.c_str(), 1);
  RunWell({"inventory"});
  ::unsetenv("SQLITE_TMPDIR");
  EXPECT_EQ(fs::last_write_time(temporary), 1);
}

/// Paths are relative to the folder of the test. In words and texts "$" stands for this folder, and
/// "@name" for a text that was kept.
class ProgramSteps : public StepsTest, public Program {
 protected:
  using Program::Run;

  ProgramSteps() {
    Verb("scan tree", [this] { ScanOnlyTheTree(); });
    Verb("write", [this](const std::string& name, const Bytes& content) {
      fs::create_directories((folder_ / name).parent_path());
      WriteFile(folder_ / name, Filled(content).get<Bytes>());
    });
    Verb("link", [this](const std::string& target, const std::string& name) {
      fs::create_symlink(folder_ / target, folder_ / name);
    });
    Verb("copy", [this](const std::string& from, const std::string& to) {
      fs::create_directories((folder_ / to).parent_path());
      fs::copy_file(FilledText(from), folder_ / to, fs::copy_options::overwrite_existing);
    });
    Verb("remove", [this](const std::string& name) { fs::remove_all(folder_ / FilledText(name)); });
    Verb("touch", [this](const std::string& name) { fs::last_write_time(folder_ / name, 1); });
    Verb("exists", [this](const std::string& name) { return fs::exists(folder_ / name); });
    Verb("mode", [this](const std::string& name) {
      const unsigned int mode = ModeOf(folder_ / FilledText(name));
      return mode / 64 * 100 + mode / 8 % 8 * 10 + mode % 8;
    });
    Verb("same", [this](const std::string& name, const std::string& other) {
      return ContentOf(folder_ / name) == ContentOf(folder_ / other);
    });
    Verb("holds", [this](const std::string& name, const std::string& text) {
      EXPECT_THAT(ContentOf(folder_ / name), HasSubstr(text));
    });
    AddCommands();
  }

 private:
  void AddCommands() {
    Verb("ask", [this](const TextList& words, const Json& wanted) {
      answer_ = Ask(Filled(words));
      const Json filled = Filled(wanted);
      if (filled != Json::object()) {
        EXPECT_EQ(Chosen(answer_, filled), filled);
      }
    });
    const auto ends = [this](int code) {
      return [this, code](const TextList& words, const Json& wanted) {
        const Answer answer = Run(Filled(words));
        EXPECT_EQ(answer.code, code);
        EXPECT_EQ(answer.errors.empty(), code == 3) << answer.errors;
        const Json filled = Filled(wanted);
        EXPECT_EQ(Chosen(Json::parse(answer.output, nullptr, false), filled), filled);
      };
    };
    Verb("fails", ends(1));
    Verb("needs attention", ends(3));
    Verb("prints", [this](const TextList& words, const TextList& patterns) {
      const Answer answer = RunWell(Filled(words));
      EXPECT_THAT(answer.errors, Not(HasSubstr("sh: ")));
      for (const std::string pattern : Filled(patterns)) {
        EXPECT_THAT(answer.output, ContainsRegex(pattern));
      }
    });
    Verb("refused", [this](const TextList& words, int code, const std::string& text) {
      ExpectRefusal(Filled(words), code, Filled(text));
    });
    Verb("follows", [this](const std::string& document, const std::string& schema) {
      ExpectValid(schema, RunWell(Filled(TextList{"open", document})).output);
    });
    Verb("answers by", [this](const std::string& schema, const TextList& words) {
      ExpectValid(schema, Run(Filled(words)).output);
    });
    Verb("keep", [this](const std::string& name, const std::string& place) {
      kept_[name] = answer_.at(Json::json_pointer(place)).get<std::string>();
    });
    Verb("size",
         [this](const std::string& place) { return answer_.at(Json::json_pointer(place)).size(); });
    Verb("count", [this](const std::string& place, const Json& wanted) {
      const Json element = Filled(wanted);
      const Json& list = answer_.at(Json::json_pointer(place));
      return std::count_if(list.begin(), list.end(),
                           [&](const Json& each) { return Chosen(each, element) == element; });
    });
  }
  std::string FilledText(const std::string& text) const { return Filled(text); }
  Json Filled(const Json& value) const {
    std::string text = value.dump();
    boost::replace_all(text, "$", folder_.Path().string());
    for (const auto& [name, kept] : kept_) boost::replace_all(text, "@" + name, kept);
    return Json::parse(text);
  }

  Json answer_;  ///< of the last "ask"
  std::map<std::string, std::string> kept_;
};

TEST_P(ProgramSteps, HaveTheirOutcome) { Follow(); }

INSTANTIATE_TEST_SUITE_P(Rows, ProgramSteps, ValuesIn(DataOf("cli/program-steps.json")),
                         [](const auto& row) -> std::string { return row.param["name"]; });

}  // namespace
