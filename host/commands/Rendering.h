#pragma once

#include <chrono>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "common/action/ActionResponse.h"
#include "common/action/TaskResponseInfo.h"
#include "host/commands/WatchedPipeline.h"

namespace Norvik::Host {

using OrderedJson = nlohmann::ordered_json;

/// A cell of a response's table: numbers and truth values as such, everything else as text.
OrderedJson CellToJson(const Common::ActionPropertyValue& value);

/// [{"status":7,"message":""}]
OrderedJson StatusesToJson(const std::vector<Common::TaskResponseInfo>& statuses);

/// [{"step":"compress","success":true}]
OrderedJson StepsToJson(const std::vector<PipelineStep>& steps);

/// As "7 started", with the message behind.
std::string StatusText(const Common::TaskResponseInfo& status);

/// The JSON on one line, with a line end. Bytes that are no UTF-8 are replaced.
std::string JsonLine(const OrderedJson& value);

/// Rows of cells in columns, each as wide as its widest cell; numbers are set to the right.
std::string TableText(const std::vector<std::vector<OrderedJson>>& rows);

/// As "2026-01-31T23:59:58Z".
std::string TimeText(std::chrono::system_clock::time_point time);

/// As "0.123 s".
std::string SecondsText(double seconds);

}  // namespace Norvik::Host
