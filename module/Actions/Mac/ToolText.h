#pragma once

#include <string>
#include <vector>

#include "common/action/ActionResponse.h"

namespace Norvik::KOB {

// Readers of what the tools of macOS print.

/// Reads the output of `netstat -a` of macOS. Each connection is a list of cells: protocol, local
/// address and port, remote address and port, the state unless the line has none, and the protocol
/// twice more. Reading begins at the heading of Internet connections and ends at the first of four
/// headings; lines of other sections between them are read as connections too. A line with too few
/// words is logged and skipped. Empty if the text is no UTF-8.
std::vector<Common::ActionResponseTable::Row> ReadConnections(const std::string& output);

/// The processor's share in the output of `ps -o %cpu -p PID`: the line after the heading, without
/// white space. "100" if there is no such line or the text is no UTF-8.
std::string ReadProcessorShare(const std::string& output);

/// A part of a whole in percent, with two decimals; "0" if the whole is below 1.
std::string PercentText(unsigned long long part, long long whole);

/// The output of `sharing -l` without one share: without its line that starts with "name:", and the
/// lines up to the next such line.
std::string WithoutShare(const std::string& listing, const std::string& name);

}  // namespace Norvik::KOB
