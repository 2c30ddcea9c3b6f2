#pragma once

#include <map>
#include <mutex>

#include "common/progress/ProgressListener.h"

namespace Norvik::Tests {

/// Records the progress as texts: "run begins", "+ setup, portConnectors" and "- setup, ..." for a
/// section, "> saving" and "< saving" for a phase, "copy", "copy fails" and so on. Thread-safe.
class ProgressRecorder : public Common::IProgressListener {
 public:
  using RunInfo = Common::RunInfo;
  using Texts = std::vector<std::string>;

  static std::string NameOf(const Common::SectionKeys& keys) {
    std::string name;
    for (const auto& key : keys) name += (name.empty() ? "" : ", ") + key;
    return name;
  }

  void RunBegun(const RunInfo& run) override { Keep(run, "run begins"); }
  void RunEnded(const RunInfo& run) override {
    Keep(run, "run ends, files: " + std::to_string(run.seen->files));
  }
  void KindDecided(const RunInfo& run, bool incremental) override {
    Keep(run, incremental ? "incremental" : "total");
  }
  void TotalInstead(const RunInfo& run, const std::string& reason) override {
    Keep(run, "total instead: " + reason);
  }
  void RequestRefused(Common::RunKind kind, const std::string& reason) override {
    Keep({0, kind, nullptr}, "refused: " + reason);
  }
  void NothingToSend(const RunInfo& run) override { Keep(run, "nothing to send"); }
  void SectionBegun(const RunInfo& run, const Common::SectionKeys& keys) override {
    Keep(run, "+ " + NameOf(keys));
  }
  void SectionEnded(const RunInfo& run, const Common::SectionKeys& keys,
                    Duration /*taken*/) override {
    Keep(run, "- " + NameOf(keys));
  }
  void PhaseBegun(const RunInfo& run, Common::RudStatus phase) override {
    Keep(run, std::string("> ") + Common::NameOf(phase));
  }
  void PhaseEnded(const RunInfo& run, Common::RudStatus phase, Duration /*taken*/) override {
    Keep(run, std::string("< ") + Common::NameOf(phase));
  }
  void DocumentStepDone(const RunInfo& run, const Common::DocumentStep& step) override {
    static constexpr const char* NAMES[] = {"write", "copy", "compress", "encrypt", "move"};
    Keep(run, std::string(NAMES[step.kind]) + (step.done ? "" : " fails"));
  }

  Texts All() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return all_;
  }
  /// The texts by number of the run; 0 for those outside a run.
  std::map<std::uint64_t, Texts> ByRun() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return byRun_;
  }
  /// Returns and removes the texts of all runs.
  Texts Take() {
    const std::lock_guard<std::mutex> lock(mutex_);
    byRun_.clear();
    return std::exchange(all_, {});
  }

 private:
  void Keep(const RunInfo& run, const std::string& text) {
    const std::lock_guard<std::mutex> lock(mutex_);
    all_.push_back(text);
    byRun_[run.id].push_back(text);
  }

  mutable std::mutex mutex_;
  Texts all_;
  std::map<std::uint64_t, Texts> byRun_;
};

class ProgressRecording {
 public:
  ProgressRecorder* operator->() const { return recorder_.get(); }

 private:
  const std::shared_ptr<ProgressRecorder> recorder_ = std::make_shared<ProgressRecorder>();
  const Common::ProgressListenerScope scope_{recorder_};
};

}  // namespace Norvik::Tests
