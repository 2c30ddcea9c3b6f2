#pragma once

#include <boost/filesystem/path.hpp>
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
/// object per line, so that they outlive the process. Safe on any thread; one object per file.
class StatusQueue {
 public:
  static constexpr std::size_t LIMIT = 10'000;

  /// Loads the file. Damaged lines are left out, with a line in the log. Throws a subclass of
  /// `std::exception` if the file exists and cannot be read.
  /// @param clock its time of day is the time of each state
  /// @param limit the largest number of states that wait
  StatusQueue(boost::filesystem::path file, std::shared_ptr<const Clock> clock,
              std::size_t limit = LIMIT);

  /// Appends a state. It is on the disk when this returns; if it cannot be stored, that is logged
  /// and the state waits in memory. Beyond the limit the oldest state is dropped, with a line in
  /// the log.
  void Add(const Common::TaskResponseInfo& status);

  bool IsEmpty() const;
  /// The oldest states, at most `count`.
  std::vector<WaitingStatus> First(std::size_t count) const;
  /// Drops the state with this id and all before it. False if no state has this id.
  bool DropThrough(const std::string& id);

 private:
  void Load();
  void Append(const std::string& line);
  void Save();

  const boost::filesystem::path file_;
  const std::shared_ptr<const Clock> clock_;
  const std::size_t limit_;
  mutable std::mutex mutex_;
  std::deque<WaitingStatus> waiting_;
  bool fileIsWhole_ = true;  ///< the file holds the same states as `waiting_`
};

}  // namespace Norvik::Host
