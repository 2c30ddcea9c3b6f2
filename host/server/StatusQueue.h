#pragma once

#include <boost/filesystem/path.hpp>
#include <cstddef>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

#include "common/action/TaskResponseInfo.h"

namespace Norvik::Host {

/// A state of a task on its way to the server.
struct WaitingStatus {
  std::string id;    ///< a UUID
  std::string json;  ///< the object that is sent
};

/// The states of tasks that the server has not acknowledged, in their order. A file keeps them, one
/// JSON object a line, so that they outlive the process. Safe on any thread; one object a file.
class StatusQueue {
 public:
  static constexpr std::size_t LIMIT = 10'000;

  /// Takes what the file holds. A line that was cut is left out, with a line in the log. Raises a
  /// subclass of `std::exception` if the file is there and cannot be read.
  explicit StatusQueue(boost::filesystem::path file, std::size_t limit = LIMIT);

  /// Appends. The file has it when this returns; if that fails it is logged, and the state waits in
  /// memory. Beyond the limit the oldest goes, with a line in the log.
  void Add(const Common::TaskResponseInfo& status);

  bool IsEmpty() const;
  /// The oldest, not more than `count`.
  std::vector<WaitingStatus> First(std::size_t count) const;
  /// Drops the state and all before it. False if there is none of this id.
  bool DropThrough(const std::string& id);

 private:
  void Load();
  void Append(const std::string& line);
  void Save();

  const boost::filesystem::path file_;
  const std::size_t limit_;
  mutable std::mutex mutex_;
  std::deque<WaitingStatus> waiting_;
  bool fileIsWhole_ = true;  ///< the file holds what `waiting_` does
};

}  // namespace Norvik::Host
