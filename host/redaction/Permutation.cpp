#include "host/redaction/Permutation.h"

#include <sodium.h>

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>

namespace Norvik::Host {

namespace {

constexpr unsigned int ROUNDS = 6;
/// From here on a sequence that is its own stand-in is too improbable to matter.
constexpr std::size_t LONG = 8;

using Range = std::pair<std::size_t, std::size_t>;  ///< of digits: begin and end

/// As many random numbers as wanted, which the key and a message choose.
std::vector<std::uint32_t> NumbersFor(const std::string& key, const std::string& message,
                                      std::size_t count) {
  unsigned char seed[randombytes_SEEDBYTES];
  ::crypto_generichash(seed, sizeof(seed), reinterpret_cast<const unsigned char*>(message.data()),
                       message.size(), reinterpret_cast<const unsigned char*>(key.data()),
                       key.size());
  std::vector<std::uint32_t> numbers(count);
  ::randombytes_buf_deterministic(numbers.data(), count * sizeof(numbers[0]), seed);
  return numbers;
}

void Append(std::string& message, std::uint32_t number) {
  for (unsigned int shift = 0; shift < 32; shift += 8) {
    message += static_cast<char>(number >> shift & 0xFF);
  }
}

/// A Feistel network over two halves, forwards or backwards.
class Network {
 public:
  Network(std::vector<Digit>& digits, const std::string& key, const std::string& tweak)
      : digits_(digits), key_(key), tweak_(tweak) {}

  void Forwards() {
    for (unsigned int round = 0; round < ROUNDS; ++round) Round(round, true);
  }
  void Backwards() {
    for (unsigned int round = ROUNDS; round-- > 0;) Round(round, false);
  }

 private:
  void Round(unsigned int round, bool forwards) {
    const std::size_t middle = digits_.size() / 2;
    Range from{0, middle};
    Range to{middle, digits_.size()};
    if (round % 2 == 0) std::swap(from, to);
    std::string message = tweak_;
    Append(message, round);
    for (const Digit& digit : digits_) Append(message, digit.base);
    for (std::size_t at = from.first; at < from.second; ++at) Append(message, digits_[at].value);
    const auto numbers = NumbersFor(key_, message, to.second - to.first);
    for (std::size_t at = to.first; at < to.second; ++at) {
      Digit& digit = digits_[at];
      const std::uint32_t step = numbers[at - to.first] % digit.base;
      digit.value = (digit.value + (forwards ? step : digit.base - step)) % digit.base;
    }
  }

  std::vector<Digit>& digits_;
  const std::string& key_;
  const std::string& tweak_;
};

/// The next one in a shuffled order.
void PermuteOne(Digit& digit, const std::string& key, const std::string& tweak) {
  std::string message = tweak;
  Append(message, digit.base);
  const auto numbers = NumbersFor(key, message, digit.base);
  std::vector<std::uint32_t> order(digit.base);
  std::iota(order.begin(), order.end(), 0u);
  for (std::uint32_t at = digit.base; at-- > 1;)
    std::swap(order[at], order[numbers[at] % (at + 1)]);
  const auto place = std::find(order.begin(), order.end(), digit.value);
  digit.value = place + 1 == order.end() ? order.front() : *(place + 1);
}

}  // namespace

void Permute(std::vector<Digit>& digits, const std::string& key, const std::string& tweak) {
  if (digits.empty()) return;
  if (digits.size() == 1) return PermuteOne(digits[0], key, tweak);
  Network network(digits, key, tweak);
  network.Forwards();
  if (digits.size() >= LONG) return;
  // A step between a way and its way back leaves nothing where it was.
  digits[0].value = (digits[0].value + 1) % digits[0].base;
  network.Backwards();
}

}  // namespace Norvik::Host
