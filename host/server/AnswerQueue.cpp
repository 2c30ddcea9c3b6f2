#include "host/server/AnswerQueue.h"

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <boost/format.hpp>
#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>
#include <charconv>
#include <exception>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "common/files/TextFile.h"
#include "common/log/Logger.h"
#include "common/text/Text.h"
#include "host/server/AnswerText.h"
#include "platform/FileSystem.h"

namespace Norvik::Host {

namespace {

namespace fs = boost::filesystem;
using Common::OnOneLine;

constexpr std::chrono::minutes BETWEEN_LINES(1);  ///< about dropped answers
constexpr char EXTENSION[] = ".json";
constexpr std::size_t ID_LENGTH = 36;

fs::path NameOf(std::uint64_t number, const std::string& id) {
  return std::to_string(number) + "-" + id + EXTENSION;
}

/// Number and id in the name of a file; empty for any other file.
boost::optional<std::pair<std::uint64_t, std::string>> ParseName(const fs::path& name) {
  const std::string stem = name.stem().string();
  std::uint64_t number = 0;
  const auto end = std::from_chars(stem.data(), stem.data() + stem.size(), number);
  const std::string id =
      stem.substr(std::min(stem.size(), static_cast<std::size_t>(end.ptr - stem.data()) + 1));
  if (end.ec != std::errc() || id.size() != ID_LENGTH || name != NameOf(number, id)) return {};
  return std::make_pair(number, id);
}

void MakeFolder(const fs::path& folder) {
  if (!fs::create_directory(folder)) return;
  fs::permissions(folder, fs::owner_all);
  Platform::SyncFolder(folder.parent_path().string());
}

}  // namespace

WaitingAnswers AnswersIn(const fs::path& folder) {
  WaitingAnswers answers;
  if (!fs::exists(folder)) return answers;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    const auto name = ParseName(entry.path().filename());
    boost::system::error_code gone;
    const auto bytes = fs::file_size(entry.path(), gone);
    const auto since = fs::last_write_time(entry.path(), gone);
    if (!name || gone) continue;
    answers[name->first] = {name->second, entry.path(), bytes, since};
  }
  return answers;
}

AnswerQueue::AnswerQueue(fs::path folder, std::shared_ptr<const Clock> clock, Bounds bounds)
    : folder_(std::move(folder)),
      clock_(std::move(clock)),
      bounds_(bounds),
      waiting_(AnswersIn(folder_)) {
  for (const auto& [number, answer] : waiting_) bytes_ += answer.bytes;
  if (!waiting_.empty()) next_ = waiting_.rbegin()->first + 1;
  DropOldest();
  ReportDropped();
}

void AnswerQueue::Add(const TaskAnswer& answer) {
  try {
    Store(answer);
  } catch (const std::exception& error) {
    NORVIK_ERROR(boost::format("The answer of the server's task %1% could not be stored and is "
                               "lost: %2%") %
                 OnOneLine(answer.taskIdentifier) % OnOneLine(error.what()));
  }
}

void AnswerQueue::Store(const TaskAnswer& answer) {
  const std::string id = to_string(boost::uuids::random_generator()());
  std::uint64_t number = 0;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    number = next_++;
  }
  const auto now = clock_->Now();
  const std::string text = AnswerText(id, answer, now);
  MakeFolder(folder_);
  const fs::path file = folder_ / NameOf(number, id);
  Common::WriteTextFile(file, text);
  const std::lock_guard<std::mutex> lock(mutex_);
  waiting_[number] = {id, file, text.size(), std::chrono::system_clock::to_time_t(now)};
  bytes_ += text.size();
  DropOldest();
  ReportDropped();
}

void AnswerQueue::DropOldest() {
  while (waiting_.size() > bounds_.count || bytes_ > bounds_.bytes) {
    Erase(waiting_.begin());
    ++unreported_;
  }
}

void AnswerQueue::ReportDropped() {
  const auto now = clock_->Steady();
  if (unreported_ == 0 || (reportedAt_ && now - *reportedAt_ < BETWEEN_LINES)) return;
  NORVIK_ERROR(boost::format("More than %1% answers of tasks or %2% bytes wait for the server; the "
                             "oldest %3% are dropped") %
               std::to_string(bounds_.count) % std::to_string(bounds_.bytes) %
               std::to_string(unreported_));
  unreported_ = 0;
  reportedAt_ = now;
}

/// A file that cannot be removed is sent again after the next start, which does no harm.
void AnswerQueue::Erase(WaitingAnswers::iterator place) {
  boost::system::error_code ignored;
  fs::remove(place->second.file, ignored);
  bytes_ -= place->second.bytes;
  waiting_.erase(place);
}

bool AnswerQueue::IsEmpty() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return waiting_.empty();
}

boost::optional<WaitingAnswer> AnswerQueue::First() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (waiting_.empty()) return boost::none;
  return waiting_.begin()->second;
}

boost::optional<std::string> AnswerQueue::Read(const WaitingAnswer& answer) {
  std::string reason = "it is no answer with this identifier";
  try {
    std::string text = Common::ReadTextFile(answer.file, LARGEST_ANSWER);
    const bool isOurs = text.rfind("{\"id\":\"" + answer.id + "\",", 0) == 0;
    if (isOurs && nlohmann::json::accept(text)) return text;
  } catch (const std::exception& error) {
    reason = error.what();
  }
  // Otherwise it was dropped in the meantime, to make room.
  if (Remove(answer.id)) {
    NORVIK_WARNING(boost::format("The waiting answer %1% is damaged and dropped: %2%") %
                   answer.file.string() % OnOneLine(reason));
  }
  return boost::none;
}

bool AnswerQueue::Remove(const std::string& id) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = std::find_if(waiting_.begin(), waiting_.end(),
                                  [&](const auto& item) { return item.second.id == id; });
  if (found == waiting_.end()) return false;
  Erase(found);
  return true;
}

}  // namespace Norvik::Host
