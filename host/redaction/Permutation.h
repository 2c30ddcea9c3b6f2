#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Norvik::Host {

/// A digit of a number with mixed bases.
struct Digit {
  std::uint32_t value;
  std::uint32_t base;  ///< more than `value`, and at least 2
};

/// Replaces a sequence by another one with the same bases: a permutation of all of them, which the
/// key and the tweak choose. No short sequence is replaced by itself, and a long one is not in
/// practice.
/// @param key of 32 bytes
void Permute(std::vector<Digit>& digits, const std::string& key, const std::string& tweak);

}  // namespace Norvik::Host
