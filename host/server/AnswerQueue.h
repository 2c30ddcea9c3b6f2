#pragma once

#include <boost/filesystem/path.hpp>
#include <boost/optional.hpp>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "host/actions/Clock.h"
#include "host/actions/TaskAnswer.h"

namespace Norvik::Host {

/// An answer of a task that waits for the server.
struct WaitingAnswer {
  std::string id;                ///< a UUID
  boost::filesystem::path file;  ///< what is sent, byte for byte
  std::uintmax_t bytes = 0;
  std::time_t since = 0;
};

/// By a number that grows with each answer.
using WaitingAnswers = std::map<std::uint64_t, WaitingAnswer>;

/// The answers in a folder, whose content is not read. None without the folder. Throws a subclass
/// of `std::exception` if the folder cannot be read.
WaitingAnswers AnswersIn(const boost::filesystem::path& folder);

/// The answers of tasks that the server has not acknowledged, in order: each a file of a folder,
/// mode 0600, that is written whole or not at all. Safe on any thread; one object per folder.
class AnswerQueue {
 public:
  struct Bounds {
    std::size_t count = 1'000;
    std::uintmax_t bytes = 64'000'000;
  };

  /// Throws a subclass of `std::exception` if the folder exists and cannot be read.
  /// @param clock its time of day is the time of each answer
  AnswerQueue(boost::filesystem::path folder, std::shared_ptr<const Clock> clock, Bounds bounds);
  AnswerQueue(boost::filesystem::path folder, std::shared_ptr<const Clock> clock)
      : AnswerQueue(std::move(folder), std::move(clock), Bounds()) {}

  /// Appends an answer. It is on the disk when this returns; one that cannot be stored is dropped
  /// with a line in the log. Beyond the bounds the oldest are dropped, with at most one line a
  /// minute. Throws nothing.
  void Add(const TaskAnswer& answer);

  bool IsEmpty() const;
  /// The oldest one.
  boost::optional<WaitingAnswer> First() const;
  /// What to send. Empty if the file is damaged: the answer is then removed, with a line in the
  /// log.
  boost::optional<std::string> Read(const WaitingAnswer& answer);
  /// Removes an answer and its file. False without one of this id.
  bool Remove(const std::string& id);

 private:
  void Store(const TaskAnswer& answer);
  void DropOldest();
  void ReportDropped();
  void Erase(WaitingAnswers::iterator place);

  const boost::filesystem::path folder_;
  const std::shared_ptr<const Clock> clock_;
  const Bounds bounds_;
  mutable std::mutex mutex_;
  WaitingAnswers waiting_;
  std::uintmax_t bytes_ = 0;  ///< of all that wait
  std::uint64_t next_ = 1;
  std::size_t unreported_ = 0;  ///< answers dropped since the log said so
  boost::optional<std::chrono::steady_clock::time_point> reportedAt_;
};

}  // namespace Norvik::Host
