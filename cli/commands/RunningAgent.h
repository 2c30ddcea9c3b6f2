#pragma once

#include <boost/filesystem/path.hpp>
#include <boost/optional.hpp>

#include "cli/commands/Rendering.h"

namespace Norvik::Cli {

/// Puts a request to the agent that serves the socket; see `AgentRequests`. Raises `UsageError` for
/// what it calls wrong use, and `std::runtime_error` if nobody answers or it refuses.
OrderedJson AskRunningAgent(const boost::filesystem::path& socket, const OrderedJson& request);

/// The same, but empty if nobody answers.
boost::optional<OrderedJson> AskAgentIfRunning(const boost::filesystem::path& socket,
                                               const OrderedJson& request);

/// Lines of a status that tell what a running agent answered; null: none runs.
std::string RunningAgentLines(const OrderedJson& agent);

}  // namespace Norvik::Cli
