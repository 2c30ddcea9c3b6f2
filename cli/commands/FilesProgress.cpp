#include "cli/commands/FilesProgress.h"

#include <ostream>
#include <utility>

namespace Norvik::Cli {

using namespace Common;
using std::chrono::steady_clock;

namespace {

constexpr std::chrono::seconds BETWEEN_LINES(1);

}  // namespace

FilesProgress::FilesProgress(std::ostream& output) : output_(output), thread_([this] { Work(); }) {}

FilesProgress::~FilesProgress() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    stopped_ = true;
  }
  changed_.notify_all();
  thread_.join();
}

void FilesProgress::Enter(RudStatus phase, std::shared_ptr<const SeenCounts> seen) {
  const std::lock_guard<std::mutex> lock(mutex_);
  phase_ = phase;
  seen_ = std::move(seen);
  if (phase == RudStatusScanning) scanSince_ = steady_clock::now();
  WriteLineIfDue();
}

void FilesProgress::Work() {
  std::unique_lock<std::mutex> lock(mutex_);
  while (!changed_.wait_for(lock, BETWEEN_LINES, [this] { return stopped_; })) WriteLineIfDue();
}

/// The caller holds `mutex_`.
void FilesProgress::WriteLineIfDue() {
  const auto time = steady_clock::now();
  if (phase_ == RudStatusFinished || time - lastLine_ < BETWEEN_LINES) return;
  lastLine_ = time;
  const std::uint64_t files = seen_->files;
  output_ << NameOf(phase_) << ": " << seen_->folders << " folders, " << files << " files";
  const std::chrono::duration<double> taken = time - scanSince_;
  if (phase_ == RudStatusScanning && files > 0) {
    output_ << ", " << static_cast<std::uint64_t>(static_cast<double>(files) / taken.count())
            << " files/s";
  }
  output_ << std::endl;
}

}  // namespace Norvik::Cli
