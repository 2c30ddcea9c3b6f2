#include "host/actions/PeriodicState.h"

#include <cstdint>
#include <locale>
#include <sstream>

namespace Norvik::Host {

namespace {

using std::chrono::seconds;
using TimePoint = PeriodicState::TimePoint;

/// Keeps sums of times within the range of the clock.
constexpr std::int64_t LARGEST = 4'000'000'000;

std::int64_t SecondsOf(TimePoint time) {
  return std::chrono::duration_cast<seconds>(time.time_since_epoch()).count();
}

bool ReadSeconds(std::istream& stream, std::int64_t& value) {
  return stream >> value && value >= 0 && value <= LARGEST;
}

}  // namespace

TimePoint PeriodicState::Following(TimePoint now) const {
  if (period <= seconds(0) || next > now) return next;
  return next + period * ((now - next) / period + 1);
}

std::string ToText(const PeriodicState& state) {
  std::string text = std::to_string(state.period.count()) + " ";
  text += std::to_string(SecondsOf(state.next));
  if (state.interrupted) text += " " + std::to_string(SecondsOf(*state.interrupted));
  return text;
}

boost::optional<PeriodicState> ParsePeriodicState(const std::string& text) {
  std::istringstream stream(text);
  stream.imbue(std::locale::classic());
  std::int64_t period = 0;
  std::int64_t next = 0;
  if (!ReadSeconds(stream, period) || !ReadSeconds(stream, next)) return boost::none;
  PeriodicState state;
  state.period = seconds(period);
  state.next = TimePoint(seconds(next));
  if (stream.eof()) return state;
  std::int64_t interrupted = 0;
  if (!ReadSeconds(stream, interrupted) || !stream.eof()) return boost::none;
  state.interrupted = TimePoint(seconds(interrupted));
  return state;
}

std::string PeriodicKey(unsigned int code) { return PERIODIC_KEY_PREFIX + std::to_string(code); }

std::string DoneKey(unsigned int code) { return "DONE_" + PeriodicKey(code); }

}  // namespace Norvik::Host
