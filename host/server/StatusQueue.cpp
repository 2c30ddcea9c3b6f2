#include "host/server/StatusQueue.h"

#include <fcntl.h>

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <boost/format.hpp>
#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>
#include <cerrno>
#include <chrono>
#include <exception>
#include <nlohmann/json.hpp>
#include <sstream>
#include <system_error>
#include <utility>

#include "common/files/TextFile.h"
#include "common/log/Logger.h"
#include "platform/FileSystem.h"

namespace Norvik::Host {

namespace {

using Common::ReadTextFile;
using Common::TaskResponseInfo;
using Common::WriteTextFile;
using OrderedJson = nlohmann::ordered_json;

constexpr std::size_t LONGEST_MESSAGE = 4096;
constexpr std::size_t LONGEST_NAME = 1024;
constexpr std::chrono::minutes BETWEEN_LINES(1);  ///< about dropped states
/// A long file that could not be written, for example on a full disk, is not tried again for each
/// state: one try in as many changes as this part of its states.
constexpr std::size_t RETRY_SHARE = 16;

std::string JsonOf(const std::string& id, const TaskResponseInfo& status,
                   std::chrono::system_clock::time_point time) {
  const auto now = time.time_since_epoch();
  const OrderedJson node = {{"id", id},
                            {"status", static_cast<unsigned int>(status.status)},
                            {"message", status.message.substr(0, LONGEST_MESSAGE)},
                            {"time", std::chrono::duration_cast<std::chrono::seconds>(now).count()},
                            {"requestId", status.requestId.substr(0, LONGEST_NAME)},
                            {"taskName", status.taskName.substr(0, LONGEST_NAME)},
                            {"taskCreationDate", status.taskCreationDate.substr(0, LONGEST_NAME)},
                            {"taskTimeStamp", status.taskTimeStamp.substr(0, LONGEST_NAME)}};
  return node.dump(-1, ' ', false, OrderedJson::error_handler_t::replace);
}

constexpr char ACKNOWLEDGED[] = "acknowledged";

std::string AcknowledgementOf(const std::string& id) {
  return OrderedJson({{ACKNOWLEDGED, id}}).dump() + "\n";
}

/// The text of a key; empty if the line has none.
std::string TextAt(const OrderedJson& line, const char* key) {
  const bool isThere = line.is_object() && line.contains(key) && line[key].is_string();
  return isThere ? line[key].get<std::string>() : std::string();
}

}  // namespace

StatusQueue::StatusQueue(boost::filesystem::path file, std::shared_ptr<const Clock> clock,
                         std::size_t limit)
    : file_(std::move(file)), clock_(std::move(clock)), limit_(limit) {
  Load();
}

void StatusQueue::Load() {
  if (!boost::filesystem::exists(file_)) return;
  std::istringstream lines(ReadTextFile(file_, boost::filesystem::file_size(file_)));
  std::size_t count = 0;
  std::size_t damaged = 0;
  for (std::string line; std::getline(lines, line); ++count) {
    const OrderedJson node = OrderedJson::parse(line, nullptr, false);
    if (const std::string id = TextAt(node, "id"); !id.empty()) {
      waiting_.push_back({id, std::move(line)});
    } else if (const std::string last = TextAt(node, ACKNOWLEDGED); !last.empty()) {
      Erase(last);
    } else {
      ++damaged;
    }
  }
  DropOldest();
  unreported_ = 0;
  dropped_ = count - waiting_.size();
  if (damaged == 0) return;
  // The file is rewritten: the next state must not be appended to an incomplete line.
  fileIsWhole_ = false;
  NORVIK_WARNING(boost::format("%1% states of tasks in %2% are damaged and left out") %
                 std::to_string(damaged) % file_.string());
}

void StatusQueue::Add(const std::vector<TaskResponseInfo>& statuses) {
  boost::uuids::random_generator generator;
  const auto now = clock_->Now();
  const std::lock_guard<std::mutex> lock(mutex_);
  // The first ones of too many would be dropped at once.
  const std::size_t left = statuses.size() - std::min(statuses.size(), limit_);
  unreported_ += left;
  std::string lines;
  for (std::size_t i = left; i < statuses.size(); ++i) {
    const std::string id = to_string(generator());
    std::string json = JsonOf(id, statuses[i], now);
    lines += json + "\n";
    waiting_.push_back({id, std::move(json)});
  }
  DropOldest();
  ReportDropped();
  Store(lines, true);
}

void StatusQueue::DropOldest() {
  if (waiting_.size() <= limit_) return;
  const std::size_t excess = waiting_.size() - limit_;
  waiting_.erase(waiting_.begin(), waiting_.begin() + static_cast<std::ptrdiff_t>(excess));
  dropped_ += excess;
  unreported_ += excess;
}

void StatusQueue::ReportDropped() {
  const auto now = clock_->Steady();
  if (unreported_ == 0 || (reportedAt_ && now - *reportedAt_ < BETWEEN_LINES)) return;
  NORVIK_ERROR(boost::format("More than %1% states of tasks wait for the server; the oldest %2% "
                             "are dropped") %
               std::to_string(limit_) % std::to_string(unreported_));
  unreported_ = 0;
  reportedAt_ = now;
}

/// Brings the file up to date, to which these lines are missing.
void StatusQueue::Store(const std::string& lines, bool sync) {
  if (skips_ > 0) {
    --skips_;
    return;
  }
  try {
    if (fileIsWhole_ && dropped_ <= limit_ && !waiting_.empty()) {
      Append(lines, sync);
    } else {
      Save();
    }
  } catch (const std::exception& error) {
    fileIsWhole_ = false;
    skips_ = waiting_.size() / RETRY_SHARE;
    NORVIK_ERROR(boost::format("The states of tasks could not be stored: %1%") % error.what());
  }
}

void StatusQueue::Append(const std::string& lines, bool sync) {
  constexpr int FLAGS = O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOFOLLOW;
  const Platform::FileDescriptor file(::open(file_.c_str(), FLAGS, 0600));
  if (!file.IsOpen()) throw std::system_error(errno, std::generic_category(), file_.string());
  Platform::WriteAll(file, lines.data(), lines.size());
  if (sync) Platform::SyncFile(file);
}

void StatusQueue::Save() {
  std::string text;
  for (const WaitingStatus& status : waiting_) text += status.json + "\n";
  WriteTextFile(file_, text);
  fileIsWhole_ = true;
  dropped_ = 0;
}

bool StatusQueue::IsEmpty() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return waiting_.empty();
}

std::vector<WaitingStatus> StatusQueue::First(std::size_t count) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto size = static_cast<std::ptrdiff_t>(std::min(count, waiting_.size()));
  return {waiting_.begin(), waiting_.begin() + size};
}

bool StatusQueue::Erase(const std::string& id) {
  const auto found = std::find_if(waiting_.begin(), waiting_.end(),
                                  [&](const WaitingStatus& status) { return status.id == id; });
  if (found == waiting_.end()) return false;
  dropped_ += static_cast<std::size_t>(found - waiting_.begin()) + 1;
  waiting_.erase(waiting_.begin(), found + 1);
  return true;
}

bool StatusQueue::DropThrough(const std::string& id) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!Erase(id)) return false;
  ++dropped_;  // the line that says so
  // Not synced: a state that is sent again does no harm.
  Store(AcknowledgementOf(id), false);
  return true;
}

}  // namespace Norvik::Host
