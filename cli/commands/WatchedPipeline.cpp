#include "cli/commands/WatchedPipeline.h"

#include <utility>

#include "common/files/Paths.h"

namespace Norvik::Cli {

using namespace Common;
namespace fs = boost::filesystem;

const char* PipelineStep::Name() const {
  static constexpr const char* NAMES[] = {"compress", "encrypt", "copy", "move to the outbox"};
  return NAMES[kind];
}

WatchedPipeline::WatchedPipeline(std::shared_ptr<IFilePipeline> inner, DocumentVisitor onDocument)
    : inner_(std::move(inner)), onDocument_(std::move(onDocument)) {}

bool WatchedPipeline::Keep(PipelineStep step) {
  const std::lock_guard<std::mutex> lock(mutex_);
  steps_.push_back(std::move(step));
  return steps_.back().done;
}

bool WatchedPipeline::Compress(const fs::path& source, const fs::path& target) {
  if (onDocument_) onDocument_(source);
  return Keep({PipelineStep::COMPRESS, inner_->Compress(source, target), source, target, {}});
}

bool WatchedPipeline::Encrypt(const fs::path& source, const fs::path& target) {
  return Keep({PipelineStep::ENCRYPT, inner_->Encrypt(source, target), source, target, {}});
}

bool WatchedPipeline::Copy(const fs::path& source, const fs::path& target) {
  return Keep({PipelineStep::COPY, inner_->Copy(source, target), source, target, {}});
}

bool WatchedPipeline::MoveToOutbox(const fs::path& file, const boost::optional<bool>& incremental) {
  const fs::path target = Paths(Paths::OUTBOX, false).AppData() / file.filename();
  const bool done = inner_->MoveToOutbox(file, incremental);
  return Keep({PipelineStep::MOVE, done, file, target, incremental});
}

std::vector<PipelineStep> WatchedPipeline::Steps() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return steps_;
}

PipelineWatch::PipelineWatch(DocumentVisitor onDocument)
    : inner_(GetFilePipeline()),
      watched_(std::make_shared<WatchedPipeline>(inner_, std::move(onDocument))) {
  SetFilePipeline(watched_);
}

PipelineWatch::~PipelineWatch() { SetFilePipeline(inner_); }

}  // namespace Norvik::Cli
