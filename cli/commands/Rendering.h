#pragma once

#include <string>
#include <vector>

#include "common/action/ActionResponse.h"
#include "common/action/TaskResponseInfo.h"
#include "common/progress/ProgressListener.h"
#include "host/OutputText.h"

namespace Norvik::Cli {

using Host::OrderedJson;

/// A cell of a response's table: numbers and truth values as such, everything else as text.
OrderedJson CellToJson(const Common::ActionPropertyValue& value);

/// [{"status":7,"message":""}]
OrderedJson StatusesToJson(const std::vector<Common::TaskResponseInfo>& statuses);

/// [{"step":"compress","success":true}]
OrderedJson StepsToJson(const std::vector<Common::DocumentStep>& steps);

/// As "7 started", with the message behind.
std::string StatusText(const Common::TaskResponseInfo& status);

/// Rows of cells in columns, each as wide as its widest cell; numbers are set to the right.
std::string TableText(const std::vector<std::vector<OrderedJson>>& rows);

/// As "0.123 s".
std::string SecondsText(double seconds);

}  // namespace Norvik::Cli
