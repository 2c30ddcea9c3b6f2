#pragma once

#include <chrono>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

namespace Norvik::Host {

/// Keeps the order of keys, so that output is always the same.
using OrderedJson = nlohmann::ordered_json;

/// The JSON on one line, without a newline. Bytes that are not UTF-8 are replaced.
std::string JsonText(const OrderedJson& value);
/// The same with a trailing newline.
std::string JsonLine(const OrderedJson& value);

/// "2026-01-31T23:59:58Z"
std::string TimeText(std::chrono::system_clock::time_point time);

/// "812 bytes", "58.3 kB", "1.2 GB": decimal units.
std::string SizeText(std::uintmax_t bytes);

/// A period in its largest two units: "7 days", "1 hour 30 minutes", "45 seconds".
std::string PeriodText(std::chrono::seconds period);

}  // namespace Norvik::Host
