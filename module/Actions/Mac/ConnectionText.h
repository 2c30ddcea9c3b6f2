#pragma once

#include <string>
#include <vector>

namespace Norvik::KOB {

/// The connections in what `netstat -a` prints of macOS, one list of cells each: protocol, local
/// address and port, remote address and port, the state unless the line has none, and the protocol
/// twice more. Reads from the heading of Internet connections to the first of the four headings
/// that end them; what stands between in other sections is taken for connections too. A line with
/// too few words is logged and passed over. None if the text is no UTF-8.
std::vector<std::vector<std::string>> ReadConnections(const std::string& output);

}  // namespace Norvik::KOB
