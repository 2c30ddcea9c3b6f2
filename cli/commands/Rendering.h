#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "common/action/TaskResponseInfo.h"
#include "common/progress/ProgressListener.h"
#include "host/OutputText.h"

namespace Norvik::Cli {

using Host::OrderedJson;
using Host::PeriodText;
using Host::SizeText;

/// [{"status":7,"message":""}]
OrderedJson StatusesToJson(const std::vector<Common::TaskResponseInfo>& statuses);

/// [{"step":"compress","success":true}]
OrderedJson StepsToJson(const std::vector<Common::DocumentStep>& steps);

/// "7 started", or "7 started: message"
std::string StatusText(const Common::TaskResponseInfo& status);

/// The text of a cell in a table: texts with their control characters escaped, null as nothing.
std::string CellText(const OrderedJson& cell);
/// Number of characters of a text in UTF-8, not of its bytes.
std::size_t WidthOf(const std::string& text);

/// Aligned columns, each as wide as its widest cell, with two spaces between them; one line per
/// row. Numbers are aligned right. Widths count characters, not bytes.
std::string TableText(const std::vector<std::vector<OrderedJson>>& rows);

/// The keys of a configuration by where they come from, from an object of key and source: a line
/// for each source that has keys, such as "from the file: profileId, server".
std::string SourceLines(const OrderedJson& sources);

/// A message for the error channel, on one line: "norvik-agent: text", or in JSON
/// {"message":"text"}.
std::string MessageLine(bool json, const std::string& text);

/// "0.123 s"
std::string SecondsText(double seconds);

}  // namespace Norvik::Cli
