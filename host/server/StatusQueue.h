#pragma once

#include <boost/filesystem/path.hpp>
#include <boost/optional.hpp>
#include <chrono>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "common/action/TaskResponseInfo.h"
#include "host/actions/Clock.h"

namespace Norvik::Host {

/// A state of a task that waits for the server.
struct WaitingStatus {
  std::string id;    ///< a UUID
  std::string json;  ///< the object that is sent
};

/// The states of tasks that the server has not acknowledged, in order. A file stores them, one JSON
/// object per line, so that they outlive the process. It only grows: a line {"acknowledged": id}
/// drops that state and all before it, and of more states than the limit the last ones count. The
/// file is written anew once it has more dropped lines than the limit, and when no state waits.
/// Safe on any thread; one object per file.
class StatusQueue {
 public:
  static constexpr std::size_t LIMIT = 10'000;

  /// Loads the file. Damaged lines are left out, with a line in the log. Throws a subclass of
  /// `std::exception` if the file exists and cannot be read.
  /// @param clock its time of day is the time of each state
  /// @param limit the largest number of states that wait
  StatusQueue(boost::filesystem::path file, std::shared_ptr<const Clock> clock,
              std::size_t limit = LIMIT);

  /// Appends states with one write. They are on the disk when this returns; if they cannot be
  /// stored, that is logged and they wait in memory. Beyond the limit the oldest states are
  /// dropped, with at most one line a minute in the log.
  void Add(const std::vector<Common::TaskResponseInfo>& statuses);

  bool IsEmpty() const;
  /// The oldest states, at most `count`.
  std::vector<WaitingStatus> First(std::size_t count) const;
  /// Drops the state with this id and all before it. False if no state has this id.
  bool DropThrough(const std::string& id);

 private:
  void Load();
  bool Erase(const std::string& id);
  void DropOldest();
  void ReportDropped();
  void Store(const std::string& lines, bool sync);
  void Append(const std::string& lines, bool sync);
  void Save();

  const boost::filesystem::path file_;
  const std::shared_ptr<const Clock> clock_;
  const std::size_t limit_;
  mutable std::mutex mutex_;
  std::deque<WaitingStatus> waiting_;
  bool fileIsWhole_ = true;     ///< the file holds the same states as `waiting_`
  std::size_t dropped_ = 0;     ///< lines of the file that hold no state of `waiting_`
  std::size_t skips_ = 0;       ///< changes to keep in memory before the file is tried again
  std::size_t unreported_ = 0;  ///< states dropped since the log said so
  boost::optional<std::chrono::steady_clock::time_point> reportedAt_;
};

}  // namespace Norvik::Host
