#include "cli/ProgramTest.h"
#include "cli/view/PageFile.h"
#include "cli/view/PageStory.h"
#include "cli/view/PageText.h"
#include "cli/view/SystemOpener.h"
#include "common/commands/Execute.h"
#include "documents/Rows.h"
#include "module/Inventories.h"

namespace {

using namespace Norvik;
using namespace Norvik::Tests;
using Cli::ViewedDocument;
using Documents::DocumentError;

constexpr char MACHINE[] = NORVIK_SOURCE_DIR "/tests/machines/intel-t2";

const Json& Rows(const char* name) { return DataOf("cli/view.json")[name]; }

TEST(ViewText, EscapesWhatCouldEndAnElement) {
  ExpectRows(
      Rows("escapes"), +[](const Bytes& text) {
        std::string escaped;
        Cli::AppendForScript(escaped, text);
        return escaped;
      });
  ExpectRows(Rows("page names"), Cli::PageNameOf);
}

TEST(ViewedDocument, IsRefusedUnlessItIsADocument) {
  ExpectRows(
      Rows("refused"), +[](const Bytes& text) {
        return MessageOf<DocumentError>([&] { Cli::ViewedDocumentOf("FILE", text); });
      });
}

/// "0>1 os changed  version 1 2", with "?" for an unknown value.
std::string LineOf(const PlainJson& change) {
  const auto text = [](const PlainJson& value) {
    return value.is_string() ? value.get<std::string>() : value.dump();
  };
  std::string line = change["from"].dump() + ">" + change["to"].dump();
  for (const char* key : {"section", "change", "record"}) line += " " + text(change[key]);
  for (const PlainJson& field : change.value("fields", PlainJson::array())) {
    line += " " + text(field["key"]) + " " + text(field.value("before", PlainJson("?"))) + " " +
            text(field["after"]);
  }
  return line;
}

/// A row: documents as [kind, name, what is put into it], and what their story is or why there is
/// none.
TEST(PageStory, PutsDocumentsInOrderAndTellsTheirChangesAndGaps) {
  const tests::ScopedLocale utf8("C.UTF-8");
  const LogCapture log;
  const Json full = Json::parse(tests::JsonText(tests::FilledInventory()));
  const Json changes = {
      {"create", nullptr}, {"delete", nullptr}, {"update", nullptr}, {"device", full["device"]}};
  const Json files = {{"device", full["device"]}, {"paths", Json::array()}, {"typeInventory", 0}};
  Json fileChanges = files;
  fileChanges["typeInventory"] = 1;
  const std::map<std::string, Json> kinds = {
      {"full", full}, {"changes", changes}, {"total files", files}, {"file changes", fileChanges}};
  for (const auto& [name, row] : Rows("stories").items()) {
    SCOPED_TRACE(name);
    std::vector<ViewedDocument> documents;
    for (const Json& cell : row[0]) {
      const std::string file = "FILE " + cell[1].get<std::string>();
      documents.push_back(Cli::ViewedDocumentOf(file, Altered(kinds.at(cell[0]), cell[2])));
      documents.back().name = cell[1];
    }
    if (row[1].is_string()) {
      EXPECT_EQ(MessageOf<DocumentError>([&] { Cli::CheckOneMachine(documents); }), row[1]);
      continue;
    }
    Cli::CheckOneMachine(documents);
    Cli::PutInOrder(documents);
    TextList notes = Cli::RemoveDuplicates(documents);
    const Cli::PageStory story(documents);
    notes.insert(notes.end(), story.Notes().begin(), story.Notes().end());
    TextList order;
    for (const ViewedDocument& document : story.Documents()) order.push_back(document.name);
    TextList lines;
    for (const PlainJson& change : PlainJson::parse(story.ChangesJson())) {
      lines.push_back(LineOf(change));
    }
    const auto index = [](const auto& at) { return at ? Json(*at) : Json(); };
    EXPECT_EQ(Json(order), row[1]["order"]);
    EXPECT_EQ(Json(lines), row[1]["changes"]);
    EXPECT_EQ(index(story.CurrentMachine()), row[1]["machine"]);
    EXPECT_EQ(index(story.CurrentFiles()), row[1]["files"]);
    ASSERT_EQ(notes.size(), row[1]["notes"].size()) << Json(notes);
    for (std::size_t at = 0; at < notes.size(); ++at) {
      EXPECT_THAT(notes[at], HasSubstr(row[1]["notes"][at].get<std::string>()));
    }
  }
}

struct View : ProgramTest {
  View() { options_ = {"--machine", MACHINE}; }

  /// What another reader of HTML finds in a page.
  static PlainJson PartsOf(const fs::path& page) {
    Common::Execute reader("'" NORVIK_PYTHON "' '" NORVIK_SOURCE_DIR "/tests/cli/page-parts'");
    EXPECT_EQ(reader.Run("'" + page.string() + "'"), 0) << reader.Output();
    return PlainJson::parse(ContentOf(page.string() + ".json"), nullptr, false);
  }

  const fs::path page_ = folder_ / "page.html";
};

TEST_F(View, NoTextOfADocumentEndsAnElementAndTheHashesAreThoseOfTheElements) {
  std::vector<std::string> texts;
  for (const Json& hostile : Rows("hostile texts")) {
    texts.push_back(Json{{hostile, {hostile, Json{{"a", hostile}}}}}.dump());
  }
  // So that a piece ends in a character.
  texts.push_back("\"" + std::string((1 << 20) - 2, 'x') + "\xF0\x9F\x98\x80</script>\"");
  Cli::PageContent content{Rows("hostile texts")[3], texts.front(), {}};
  for (const std::string& text : texts) content.documents.push_back(&text);
  const std::uintmax_t bytes = Cli::WritePage(page_, content);
  EXPECT_EQ(bytes, fs::file_size(page_));
  const PlainJson parts = PartsOf(page_);
  TextList elements = {"html",  "head",  "meta", "meta",     "meta", "meta",
                       "title", "style", "body", "noscript", "main"};
  elements.insert(elements.end(), texts.size() + 2, "script");
  EXPECT_EQ(parts["elements"], elements);
  EXPECT_EQ(parts["policy"], "default-src 'none'; script-src " + parts.value("script", "") +
                                 "; style-src " + parts.value("style", "") +
                                 "; img-src data:; base-uri 'none'; form-action 'none'");
  EXPECT_EQ(parts["title"], content.title);
  for (std::size_t at = 0; at < texts.size(); ++at) {
    EXPECT_EQ(parts["documents"][at], PlainJson::parse(texts[at])) << at;
  }
}

TEST_F(View, ThePageOfAPairHasTheChangesOfDiffAndRedactedNoPersonalValue) {
  const std::string sealed = Ask({"inventory"})["file"];
  const PlainJson before = PlainJson::parse(RunWell({"open", sealed}).output);
  PlainJson after = before;
  after["device"]["assetDate"] = before["device"]["assetDate"].get<long long>() + 1000;
  after["os"]["version"] = "99";
  after["user"].erase(0);
  after["software"][0]["version"] = "98";
  after["printer"].push_back(after["printer"][0]);
  after["printer"].back()["name"] = "new";
  const std::string host = before["device"]["name"];
  const std::string other = (folder_ / (host + ".json")).string();
  WriteFile(other, after.dump());
  const auto report = Ask({"view", other, sealed, "--output", page_.string()});
  EXPECT_EQ(report["bytes"], fs::file_size(page_));
  const PlainJson parts = PartsOf(page_);
  EXPECT_EQ(parts["documents"], PlainJson({before, after}));
  EXPECT_EQ(parts["page"]["schema"].size(), 28u);
  EXPECT_EQ(parts["page"]["current"]["machine"], 1);
  const PlainJson wanted = PlainJson::parse(RunWell({"diff", sealed, other}).output);
  const std::pair<const char*, const char*> kinds[] = {
      {"create", "created"}, {"delete", "removed"}, {"update", "changed"}};
  std::size_t count = 0;
  for (const auto& [part, kind] : kinds) {
    PlainJson found;
    for (const PlainJson& change : parts["page"]["changes"]) {
      if (change["change"] != kind) continue;
      found[change["section"].get<std::string>()].push_back(change["record"]);
      ++count;
    }
    EXPECT_EQ(found.size(), wanted[part].size()) << found << wanted[part];
    for (const auto& [section, records] : wanted[part].items()) {
      EXPECT_EQ(found[section].size(), records.is_array() ? records.size() : 1u) << section;
    }
  }
  EXPECT_EQ(report["changes"], count);

  RunWell({"view", other, sealed, other, "--redact", "--output", page_.string()});
  const std::string redacted = ContentOf(page_);
  for (const char* place : {"/device/name", "/device/guid", "/setup/system/serial",
                            "/setup/system/uuid", "/networkAdapter/0/macAddress"}) {
    const std::string value = before.value(PlainJson::json_pointer(place), "");
    EXPECT_GE(value.size(), 4u) << place;
    EXPECT_EQ(redacted.find(value), std::string::npos) << place;
  }
  EXPECT_EQ(PartsOf(page_)["page"]["changes"].size(), count);
}

TEST_F(View, AFullDiskOrAKillLeavesNoPageAndNothingElse) {
  WriteFile(folder_ / "files.json", R"({"device":{},"paths":[],"typeInventory":0,"x":")" +
                                        std::string(100'000, 'x') + "\"}");
  const auto before = FilesBelow(folder_.Path());
  for (const bool isKilled : {false, true}) {
    Platform::ChildCommand command;
    command.words = {
        "/bin/sh",
        "-c",
        isKilled ? "ulimit -f 8 && exec \"$@\"" : "trap '' XFSZ && ulimit -f 8 && exec \"$@\"",
        "sh",
        NORVIK_BINARY_DIR "/bin/norvik-agent",
        "view",
        (folder_ / "files.json").string(),
        "--output",
        page_.string()};
    std::string printed;
    command.onOutput = [&](std::string_view piece) { printed += piece; };
    EXPECT_EQ(Platform::RunChild(command).exitCode, isKilled ? 128 + SIGXFSZ : 1);
    EXPECT_THAT(printed, isKilled ? ""
                                  : "norvik-agent: cannot write " + page_.string() +
                                        ": Writing failed: File too large\n");
    // What a killed program leaves is removed by another.
    for (int tries = 0; tries < 100 && FilesBelow(folder_.Path()) != before; ++tries) {
      std::this_thread::sleep_for(milliseconds(50));
    }
    EXPECT_EQ(FilesBelow(folder_.Path()), before);
  }
}

TEST_F(View, TheOpenerGetsTheWholePathAndItsFailureIsReported) {
  options_.clear();
  WriteFile(folder_ / "files.json", R"({"device":{},"paths":[],"typeInventory":0})");
  const fs::path opener = folder_ / Cli::SYSTEM_OPENER;
  const fs::path opened = folder_ / "opened";
  const std::string path = ::getenv("PATH");
  ::setenv("PATH", (folder_.Path().string() + ":" + path).c_str(), 1);
  const fs::path page = folder_ / "-a $(touch x);'\".html";
  const TextList words = {"view", (folder_ / "files.json").string(), "--open", "--output",
                          page.string()};
  for (const int code : {0, 3}) {
    WriteFile(opener, "#!/bin/sh\nprintf %s \"$#$1\" >'" + opened.string() + "'\nexit " +
                          std::to_string(code));
    fs::permissions(opener, fs::owner_all);
    const Answer answer = Run(words);
    EXPECT_EQ(answer.code, code == 0 ? 0 : 1);
    EXPECT_THAT(answer.errors, HasSubstr(code == 0 ? "" : ": it ended with 3\n"));
    EXPECT_EQ(ContentOf(opened), "1" + page.string());
  }
  ::setenv("PATH", path.c_str(), 1);
}

}  // namespace
