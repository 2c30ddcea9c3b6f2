#include "host/history/DocumentHistory.h"

#include "common/files/FilePipeline.h"
#include "host/history/KeepingScope.h"
#include "host/history/KeptDocuments.h"
#include "platform/ReplacementFile.h"
#include "support/FakeActionClock.h"
#include "support/Steps.h"

namespace {

using namespace Norvik;
using namespace Norvik::Host;
using namespace Norvik::Tests;

/// Stands for the rest of the pipeline; a crash ends it at a point of the move.
struct CrashingPipeline : Common::IFilePipeline {
  bool Compress(const fs::path&, const fs::path&) override { return false; }
  bool Encrypt(const fs::path&, const fs::path&) override { return false; }
  bool Copy(const fs::path&, const fs::path&) override { return false; }
  bool MoveToOutbox(const fs::path& file, const boost::optional<bool>&) override {
    if (crash == "before the move") throw crash;
    if (crash == "failure") return false;
    fs::rename(file, file.parent_path().parent_path() / "outbox" / file.filename());
    if (crash == "after the move") throw crash;
    return true;
  }
  std::string crash;
};

class History : public StepsTest {
 protected:
  History() {
    for (const char* name : {"work", "outbox"}) fs::create_directory(folder_ / name);
    Common::SetFilePipeline(pipeline_);
    Restart();
    Verb("keep",
         [this](const std::string& kind, const std::string& content) { Keep(kind, content); });
    Verb("crash", [this](const std::string& point, const std::string& content) {
      pipeline_->crash = point;
      EXPECT_THROW(Keep("full", content), std::string);
      pipeline_->crash.clear();
      Restart();
    });
    Verb("fail", [this](const std::string& content) {
      pipeline_->crash = "failure";
      Keep("full", content);
      pipeline_->crash.clear();
    });
    Verb("limits", [this](unsigned int days, unsigned int bytes) {
      history_->SetLimits({days, bytes});
    });
    Verb("pass days", [this](long days) { clock_->Move(seconds(86400 * days)); });
    Verb("set back days", [this](long days) { clock_->SetTimeOfDay(START - 86400 * days); });
    Verb("deliver", [this] {
      const fs::path kept = history_->KeptAs(folder_ / "outbox/m.jsonkob");
      fs::remove(folder_ / "outbox/m.jsonkob");
      history_->Delivered(kept);
    });
    Verb("seal again", [this](const std::string& content) {
      const fs::path file = folder_ / "outbox/m.jsonkob";
      history_->Follow(file, [&] {
        fs::remove(file);
        WriteFile(file, content);
      });
    });
    Verb("kept", [this] { return Kept(); });
    Verb("files", [this] { return FilesBelow(folder_.Path()).size(); });
  }
  ~History() override {
    scope_.reset();
    Common::SetFilePipeline(nullptr);
  }

 private:
  static constexpr long START = 1'767'225'600;

  void Restart() {
    scope_.reset();
    history_ = std::make_shared<DocumentHistory>(folder_.Path(), clock_);
    history_->Recover();
    Platform::RemoveLeftReplacements(folder_.Path().string());
    scope_ = std::make_unique<KeepingScope>(history_, HistoryLimits());
  }
  void Keep(const std::string& kind, const std::string& content) {
    const fs::path file = folder_ / "work" / (kind == "files" ? "m.jsonrud" : "m.jsonkob");
    // As a run does: into the file that is there.
    WriteFile(file, content);
    const boost::optional<bool> incremental(kind != "files", kind == "incremental");
    Common::GetFilePipeline()->MoveToOutbox(file, incremental);
  }
  /// "7 full content waiting"
  TextList Kept() const {
    TextList lines;
    for (const KeptDocument& document : KeptDocumentsOf(folder_.Path())) {
      EXPECT_EQ(ModeOf(document.path), 0600u);
      EXPECT_EQ(KeptName::Parse(document.name.Text())->time, document.name.time);
      lines.push_back(std::to_string(document.name.number) + " " + NameOf(document.name.kind) +
                      " " + ContentOf(document.path) + " " + NameOf(document.state));
    }
    return lines;
  }

  const TemporaryFolder folder_;
  const std::shared_ptr<FakeActionClock> clock_ = std::make_shared<FakeActionClock>(START);
  const std::shared_ptr<CrashingPipeline> pipeline_ = std::make_shared<CrashingPipeline>();
  std::shared_ptr<DocumentHistory> history_;
  std::unique_ptr<KeepingScope> scope_;
};

TEST_P(History, KeepsWhatReachedTheOutboxWithinItsLimits) { Follow(); }

INSTANTIATE_TEST_SUITE_P(Rows, History, ValuesIn(DataOf("host/history/keeping.json")),
                         [](const auto& row) -> std::string { return row.param["name"]; });

}  // namespace
