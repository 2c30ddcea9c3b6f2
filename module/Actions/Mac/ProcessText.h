#pragma once

#include <string>

namespace Norvik::KOB {

/// The share of the processor in what `ps -o %cpu -p PID` prints: the line behind the heading,
/// without white space. "100" if there is no such line or the text is no UTF-8.
std::string ReadProcessorShare(const std::string& output);

/// A part of a whole in per cent, with two decimals; "0" if the whole is below 1.
std::string PercentText(unsigned long long part, long long whole);

}  // namespace Norvik::KOB
