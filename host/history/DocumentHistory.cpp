#include "host/history/DocumentHistory.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <boost/format.hpp>
#include <cerrno>
#include <exception>
#include <stdexcept>
#include <utility>
#include <vector>

#include "common/files/FilePipeline.h"
#include "common/log/Logger.h"
#include "host/history/KeptDocuments.h"
#include "platform/FileSystem.h"

namespace Norvik::Host {

namespace {

namespace fs = boost::filesystem;
using Documents = std::vector<KeptDocument>;

// A name of `ReplacementFile`, so that what is not recovered is removed like those.
constexpr char PENDING[] = ".new-keptas";

fs::path PendingName(const fs::path& target) {
  return target.parent_path() / ("." + target.filename().string() + PENDING);
}

/// The final name that a pending file is to have; empty for any other name.
boost::optional<KeptName> NameOfPending(const std::string& text) {
  const std::size_t end = sizeof(PENDING) - 1;
  if (text.size() <= end || text.front() != '.' || text.substr(text.size() - end) != PENDING) {
    return boost::none;
  }
  return KeptName::Parse(text.substr(1, text.size() - end - 1));
}

bool AreSame(const fs::path& file, const fs::path& other) {
  struct stat one {};
  struct stat two {};
  return ::lstat(file.c_str(), &one) == 0 && ::lstat(other.c_str(), &two) == 0 &&
         one.st_dev == two.st_dev && one.st_ino == two.st_ino;
}

/// A link of the file in a folder; empty without one.
fs::path LinkIn(const fs::path& folder, const fs::path& file) {
  boost::system::error_code ignored;
  for (fs::directory_iterator item(folder, ignored), end; item != end; item.increment(ignored)) {
    if (AreSame(item->path(), file)) return item->path();
  }
  return {};
}

void MakeFolder(const fs::path& folder) {
  if (::mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST) {
    Platform::ThrowSystemError(errno, folder.string());
  }
}

/// Where links are impossible, copies.
void LinkOrCopy(const fs::path& file, const fs::path& target) {
  if (::link(file.c_str(), target.c_str()) != 0 && !Common::GetFilePipeline()->Copy(file, target)) {
    throw std::runtime_error("it can be neither linked nor copied");
  }
  fs::permissions(target, fs::owner_read | fs::owner_write);
}

/// Runs a step of the keeping; the log has what it throws.
template <class Step>
void Try(const fs::path& file, Step step) {
  try {
    step();
  } catch (const std::exception& error) {
    NORVIK_WARNING(boost::format("The history does not keep %1%: %2%") % file.filename().string() %
                   error.what());
  }
}

}  // namespace

DocumentHistory::DocumentHistory(const fs::path& dataFolder, std::shared_ptr<const Clock> clock)
    : dataFolder_(dataFolder), folder_(dataFolder / HISTORY_FOLDER), clock_(std::move(clock)) {}

void DocumentHistory::Recover() {
  const std::lock_guard<std::mutex> lock(mutex_);
  boost::system::error_code ignored;
  std::vector<fs::path> pending;
  for (fs::directory_iterator item(folder_, ignored), end; item != end; item.increment(ignored)) {
    if (NameOfPending(item->path().filename().string())) pending.push_back(item->path());
  }
  for (const fs::path& file : pending) {
    // A file that is still in the work folder did not reach the outbox, and the next run overwrites
    // it.
    if (!LinkIn(dataFolder_ / "work", file).empty()) continue;
    fs::rename(file, folder_ / NameOfPending(file.filename().string())->Text(), ignored);
  }
}

void DocumentHistory::SetLimits(const HistoryLimits& limits) {
  const std::lock_guard<std::mutex> lock(mutex_);
  limits_ = limits;
  Try(folder_, [&] { Prune(); });
}

bool DocumentHistory::Keep(const fs::path& file, const boost::optional<bool>& incremental,
                           const std::function<bool()>& move) {
  // Also during the move: a delivery at once must find the final name.
  const std::lock_guard<std::mutex> lock(mutex_);
  if (limits_.days == 0) return move();
  fs::path target;
  Try(file, [&] { target = Prepare(file, incremental); });
  const bool moved = move();
  if (target.empty()) return moved;
  Try(file, [&] {
    if (!moved) {
      fs::remove(PendingName(target));
      return;
    }
    fs::rename(PendingName(target), target);
    Platform::SyncFolder(folder_.string());
    Prune();
  });
  return moved;
}

/// Returns the final name of the file, which is kept under a pending one.
fs::path DocumentHistory::Prepare(const fs::path& file,
                                  const boost::optional<bool>& incremental) const {
  MakeFolder(folder_);
  const Documents documents = KeptDocumentsOf(dataFolder_);
  KeptName name;
  name.number = documents.empty() ? 1 : documents.back().name.number + 1;
  name.time = clock_->Now();
  name.kind = !incremental   ? DocumentKind::Files
              : *incremental ? DocumentKind::Incremental
                             : DocumentKind::Full;
  name.extension = file.extension().string();
  fs::path target = folder_ / name.Text();
  LinkOrCopy(file, PendingName(target));
  Platform::SyncFolder(folder_.string());
  return target;
}

void DocumentHistory::Follow(const fs::path& file, const std::function<void()>& replace) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const fs::path kept = Find(file);
  replace();
  if (kept.empty()) return;
  Try(file, [&] {
    LinkOrCopy(file, PendingName(kept));
    fs::rename(PendingName(kept), kept);
    Platform::SyncFolder(folder_.string());
  });
}

fs::path DocumentHistory::KeptAs(const fs::path& file) {
  const std::lock_guard<std::mutex> lock(mutex_);
  return Find(file);
}

void DocumentHistory::Delivered(const fs::path& kept) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (kept.empty() || !fs::exists(kept)) return;
  auto name = *KeptName::Parse(kept.filename().string());
  name.delivered = true;
  Try(kept, [&] { fs::rename(kept, folder_ / name.Text()); });
}

fs::path DocumentHistory::Find(const fs::path& file) const {
  const fs::path found = LinkIn(folder_, file);
  return KeptName::Parse(found.filename().string()) ? found : fs::path();
}

void DocumentHistory::Prune() const {
  const Documents documents = KeptDocumentsOf(dataFolder_);
  std::uintmax_t bytes = 0;
  for (const KeptDocument& document : documents) bytes += document.bytes;
  const auto oldest = clock_->Now() - std::chrono::hours(24) * limits_.days;
  std::size_t removed = 0;
  for (const KeptDocument& document : documents) {
    const bool isOld = limits_.days == 0 || document.name.time < oldest;
    if (!isOld && bytes <= limits_.bytes) continue;
    fs::remove(document.path);
    bytes -= document.bytes;
    ++removed;
  }
  boost::system::error_code ignored;
  if (limits_.days == 0) fs::remove(folder_, ignored);
  if (removed > 0) {
    NORVIK_DETAIL(boost::format("%1% documents of the history are removed") %
                  std::to_string(removed));
  }
}

}  // namespace Norvik::Host
