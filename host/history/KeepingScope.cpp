#include "host/history/KeepingScope.h"

#include <utility>

namespace Norvik::Host {

namespace {

namespace fs = boost::filesystem;
using Common::IFilePipeline;

/// The steps of another pipeline. The history sees what is moved to the outbox.
class KeepingPipeline : public IFilePipeline {
 public:
  KeepingPipeline(std::shared_ptr<IFilePipeline> next, std::shared_ptr<DocumentHistory> history)
      : next_(std::move(next)), history_(std::move(history)) {}

  bool Compress(const fs::path& source, const fs::path& target) override {
    return next_->Compress(source, target);
  }
  bool Encrypt(const fs::path& source, const fs::path& target) override {
    return next_->Encrypt(source, target);
  }
  bool Copy(const fs::path& source, const fs::path& target) override {
    return next_->Copy(source, target);
  }
  bool MoveToOutbox(const fs::path& file, const boost::optional<bool>& incremental) override {
    return history_->Keep(file, incremental,
                          [&] { return next_->MoveToOutbox(file, incremental); });
  }

 private:
  const std::shared_ptr<IFilePipeline> next_;
  const std::shared_ptr<DocumentHistory> history_;
};

}  // namespace

KeepingScope::KeepingScope(std::shared_ptr<DocumentHistory> history, const HistoryLimits& limits)
    : former_(Common::GetFilePipeline()) {
  history->SetLimits(limits);
  Common::SetFilePipeline(std::make_shared<KeepingPipeline>(former_, std::move(history)));
}

KeepingScope::~KeepingScope() { Common::SetFilePipeline(former_); }

}  // namespace Norvik::Host
