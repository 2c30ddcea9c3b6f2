#pragma once

#include <boost/optional.hpp>
#include <chrono>
#include <string>

namespace Norvik::Host {

/// The state of a periodic action in the agent data, so that a restart neither loses nor repeats a
/// run. Before a run starts, `next` becomes the time of the following run and `interrupted` the
/// time of this one; the end of the run clears `interrupted`. If the process dies in between,
/// `interrupted` remains and the run is repeated at the next start; if it dies before or after,
/// `next` is the run that is still due.
struct PeriodicState {
  using TimePoint = std::chrono::system_clock::time_point;

  std::chrono::seconds period{0};  ///< 0: runs once
  TimePoint next;
  boost::optional<TimePoint> interrupted;
  /// How many runs in a row have begun and not ended, with the one that runs.
  unsigned int begun = 0;

  /// When the action is due after a start of the process.
  TimePoint Due() const { return interrupted ? *interrupted : next; }
  /// The first time of the action after `now`; `next` itself for an action that runs once.
  TimePoint Following(TimePoint now) const;
};

/// "86400 1767225600": period and next time in seconds, followed by the time of an interrupted run,
/// and by "x2" if two runs have begun and not ended. Without a number an interrupted run is the
/// only one.
std::string ToText(const PeriodicState& state);
/// Empty if the text is no such state or a time is out of range.
boost::optional<PeriodicState> ParsePeriodicState(const std::string& text);

/// Keys of the states in the agent data.
inline constexpr char PERIODIC_KEY_PREFIX[] = "PERIODIC_";
inline constexpr char SCHEDULE_KEY_PREFIX[] = "SCHEDULE_";
std::string PeriodicKey(unsigned int code);
/// The key that keeps the state of an action that runs once, after it has run.
std::string DoneKey(unsigned int code);

}  // namespace Norvik::Host
