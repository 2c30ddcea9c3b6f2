#pragma once

#include <boost/filesystem/path.hpp>
#include <boost/optional.hpp>

#include "cli/commands/Rendering.h"

namespace Norvik::Cli {

/// Sends a request to the agent that serves the socket; see `AgentRequests`. Throws `UsageError`
/// for what it calls wrong use, and `std::runtime_error` if no agent answers or it refuses.
OrderedJson AskRunningAgent(const boost::filesystem::path& socket, const OrderedJson& request);

/// The same, but empty if no agent answers.
boost::optional<OrderedJson> AskAgentIfRunning(const boost::filesystem::path& socket,
                                               const OrderedJson& request);

/// The answer of a running agent to "status", as lines; null: no agent runs.
std::string RunningAgentLines(const OrderedJson& agent);

}  // namespace Norvik::Cli
