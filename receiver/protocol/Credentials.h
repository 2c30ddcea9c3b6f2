#pragma once

#include <string>

namespace Norvik::Receiver {

/// Of a token or an enrolment secret, both of which are long and random, only this is stored:
/// SHA-256 in hexadecimal digits.
std::string HashOf(const std::string& secret);
/// Compares two hashes in a time that does not depend on where they differ.
bool IsSameHash(const std::string& left, const std::string& right);
/// Random hexadecimal digits.
std::string RandomText(std::size_t bytes);

}  // namespace Norvik::Receiver
