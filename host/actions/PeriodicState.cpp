#include "host/actions/PeriodicState.h"

#include <boost/algorithm/string/split.hpp>
#include <charconv>
#include <cstdint>
#include <system_error>
#include <vector>

namespace Norvik::Host {

namespace {

using std::chrono::seconds;
using TimePoint = PeriodicState::TimePoint;

/// Keeps sums of times within the range of the clock.
constexpr std::int64_t LARGEST = 4'000'000'000;

std::int64_t SecondsOf(TimePoint time) {
  return std::chrono::duration_cast<seconds>(time.time_since_epoch()).count();
}

/// More runs than any state counts.
constexpr std::int64_t MOST_RUNS = 1'000;

/// Empty if the word is no number of this range.
boost::optional<std::int64_t> ReadNumber(const std::string& word, std::int64_t highest = LARGEST) {
  std::int64_t value = 0;
  const char* const end = word.data() + word.size();
  const auto [stop, error] = std::from_chars(word.data(), end, value);
  if (error != std::errc() || stop != end || value < 0 || value > highest) return boost::none;
  return value;
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
  if (state.begun != (state.interrupted ? 1u : 0u)) text += " x" + std::to_string(state.begun);
  return text;
}

boost::optional<PeriodicState> ParsePeriodicState(const std::string& text) {
  std::vector<std::string> words;
  boost::algorithm::split(words, text, [](char c) { return c == ' '; });
  boost::optional<std::int64_t> begun;
  if (!words.back().empty() && words.back().front() == 'x') {
    begun = ReadNumber(words.back().substr(1), MOST_RUNS);
    if (!begun) return boost::none;
    words.pop_back();
  }
  if (words.size() != 2 && words.size() != 3) return boost::none;
  const auto period = ReadNumber(words[0]);
  const auto next = ReadNumber(words[1]);
  if (!period || !next) return boost::none;
  PeriodicState state;
  state.period = seconds(*period);
  state.next = TimePoint(seconds(*next));
  if (words.size() == 3) {
    const auto interrupted = ReadNumber(words[2]);
    if (!interrupted) return boost::none;
    state.interrupted = TimePoint(seconds(*interrupted));
  }
  state.begun = static_cast<unsigned int>(begun.get_value_or(state.interrupted ? 1 : 0));
  return state;
}

std::string PeriodicKey(unsigned int code) { return PERIODIC_KEY_PREFIX + std::to_string(code); }

std::string DoneKey(unsigned int code) { return "DONE_" + PeriodicKey(code); }

}  // namespace Norvik::Host
