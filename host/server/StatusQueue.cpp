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

/// The id is empty if the line is damaged.
WaitingStatus ParseLine(const std::string& line) {
  const OrderedJson node = OrderedJson::parse(line, nullptr, false);
  if (!node.is_object() || !node.contains("id") || !node["id"].is_string()) return {};
  return {node["id"].get<std::string>(), line};
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
  std::size_t damaged = 0;
  for (std::string line; std::getline(lines, line);) {
    WaitingStatus status = ParseLine(line);
    if (status.id.empty()) {
      ++damaged;
    } else {
      waiting_.push_back(std::move(status));
    }
  }
  if (damaged == 0) return;
  // The file is rewritten: the next state must not be appended to an incomplete line.
  fileIsWhole_ = false;
  NORVIK_WARNING(boost::format("%1% states of tasks in %2% are damaged and left out") %
                 std::to_string(damaged) % file_.string());
}

void StatusQueue::Add(const TaskResponseInfo& status) {
  boost::uuids::random_generator generator;
  const std::string id = to_string(generator());
  std::string json = JsonOf(id, status, clock_->Now());

  const std::lock_guard<std::mutex> lock(mutex_);
  waiting_.push_back({id, std::move(json)});
  while (waiting_.size() > limit_) {
    NORVIK_ERROR(boost::format("More than %1% states of tasks wait for the server; the oldest is "
                               "dropped") %
                 std::to_string(limit_));
    waiting_.pop_front();
    fileIsWhole_ = false;
  }
  try {
    if (fileIsWhole_) {
      Append(waiting_.back().json);
    } else {
      Save();
    }
  } catch (const std::exception& error) {
    fileIsWhole_ = false;
    NORVIK_ERROR(boost::format("A state of a task could not be stored: %1%") % error.what());
  }
}

void StatusQueue::Append(const std::string& line) {
  constexpr int FLAGS = O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOFOLLOW;
  const Platform::FileDescriptor file(::open(file_.c_str(), FLAGS, 0600));
  if (!file.IsOpen()) throw std::system_error(errno, std::generic_category(), file_.string());
  const std::string text = line + "\n";
  Platform::WriteAll(file, text.data(), text.size());
  Platform::SyncFile(file);
}

void StatusQueue::Save() {
  std::string text;
  for (const WaitingStatus& status : waiting_) text += status.json + "\n";
  WriteTextFile(file_, text);
  fileIsWhole_ = true;
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

bool StatusQueue::DropThrough(const std::string& id) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = std::find_if(waiting_.begin(), waiting_.end(),
                                  [&](const WaitingStatus& status) { return status.id == id; });
  if (found == waiting_.end()) return false;
  waiting_.erase(waiting_.begin(), found + 1);
  try {
    Save();
  } catch (const std::exception& error) {
    fileIsWhole_ = false;
    NORVIK_ERROR(boost::format("The states of tasks could not be stored: %1%") % error.what());
  }
  return true;
}

}  // namespace Norvik::Host
