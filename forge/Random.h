#pragma once

#include <cmath>
#include <cstdint>
#include <string>

namespace Norvik::Forge {

/// Random numbers by name: the same names give the same numbers, whatever else was drawn before.
/// So a value of a Mac depends on the seed, its number and what the value is, and on nothing else.
/// The distributions of the standard library differ between implementations; these do not.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(Mixed(seed ^ 0x6E6F7276696BULL)) {}

  /// The numbers of a value: `random.For("displays", slot)`.
  template <class... Names>
  Random For(const Names&... names) const {
    Random inner = *this;
    (inner.Add(names), ...);
    return inner;
  }

  std::uint64_t Bits() {
    state_ += 0x9E3779B97F4A7C15ULL;
    return Mixed(state_);
  }
  /// From 0 up to, but never 1.
  double Unit() { return static_cast<double>(Bits() >> 11) * 0x1p-53; }
  bool Chance(double probability) { return Unit() < probability; }
  /// From 0 to `count - 1`.
  std::uint64_t Below(std::uint64_t count) {
    return static_cast<std::uint64_t>(Unit() * static_cast<double>(count));
  }
  double Between(double low, double high) { return low + Unit() * (high - low); }
  /// A time until something that happens once in `mean` on average.
  double Exponential(double mean) { return -mean * std::log1p(-Unit()); }

 private:
  static std::uint64_t Mixed(std::uint64_t bits) {
    bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9ULL;
    bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EBULL;
    return bits ^ (bits >> 31);
  }
  void Add(const char* name) {
    for (; *name != '\0'; ++name) {
      state_ = (state_ ^ static_cast<unsigned char>(*name)) * 0x100000001B3ULL;
    }
    state_ = Mixed(state_);
  }
  void Add(const std::string& name) { Add(name.c_str()); }
  template <class Number>
  void Add(Number number) {
    state_ = Mixed(state_ + Mixed(static_cast<std::uint64_t>(number) + 0x51ULL));
  }

  std::uint64_t state_;
};

/// A part of the time of a Mac in which something stays as it is.
struct Period {
  std::int64_t number;  ///< 0 is the one that has begun before day 0
  double begin;         ///< in days; of the first one at or before 0
};

/// The period that a day is in, where each lasts `mean` days on average.
inline Period PeriodOf(const Random& random, double mean, int day) {
  Random lengths = random.For("periods");
  Period period{0, -lengths.Exponential(mean)};
  for (double end = lengths.Exponential(mean); end <= day; end += lengths.Exponential(mean)) {
    period = {period.number + 1, end};
  }
  return period;
}

}  // namespace Norvik::Forge
