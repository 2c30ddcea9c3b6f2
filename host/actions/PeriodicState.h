#pragma once

#include <boost/optional.hpp>
#include <chrono>
#include <string>

namespace Norvik::Host {

/// What the agent data keep of a periodic action, so that a restart neither loses nor doubles a
/// run. Before a run starts, `next` is moved on and `interrupted` takes the run's own time; the end
/// of the run clears it. A process that dies in between leaves the mark, and the run is made up for
/// at the next start; one that dies before or after leaves `next` at the run that is still due.
struct PeriodicState {
  using TimePoint = std::chrono::system_clock::time_point;

  std::chrono::seconds period{0};  ///< 0: once
  TimePoint next;
  boost::optional<TimePoint> interrupted;

  /// When the action is due at a start of the process.
  TimePoint Due() const { return interrupted ? *interrupted : next; }
  /// The first time of the action behind `now`; `next` itself for an action that runs once.
  TimePoint Following(TimePoint now) const;
};

/// As "86400 1767225600", with the time of an interrupted run behind.
std::string ToText(const PeriodicState& state);
/// Empty if the text is no such state or holds times that no agent writes.
boost::optional<PeriodicState> ParsePeriodicState(const std::string& text);

/// Keys of the agent data under which the states stand.
inline constexpr char PERIODIC_KEY_PREFIX[] = "PERIODIC_";
inline constexpr char SCHEDULE_KEY_PREFIX[] = "SCHEDULE_";
std::string PeriodicKey(unsigned int code);
/// Where the state of an action that runs once stays when it has run.
std::string DoneKey(unsigned int code);

}  // namespace Norvik::Host
