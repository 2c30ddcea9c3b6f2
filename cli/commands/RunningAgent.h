#pragma once

#include <boost/filesystem/path.hpp>
#include <boost/optional.hpp>
#include <functional>
#include <string>

#include "cli/commands/Rendering.h"

namespace Norvik::Cli {

/// Sends a request to the agent that serves the socket, waits for the answer and returns it: a JSON
/// object. See `AgentRequests` for the requests. Throws `UsageError` if the agent reports wrong
/// use, and `std::runtime_error` if no agent answers or it refuses.
/// @param onEvents see `AskAgent`
OrderedJson AskRunningAgent(const boost::filesystem::path& socket, const OrderedJson& request,
                            const std::function<void(const std::string& events)>& onEvents = {});

/// The same, but returns an empty value if no agent answers.
boost::optional<OrderedJson> AskAgentIfRunning(const boost::filesystem::path& socket,
                                               const OrderedJson& request);

/// The lines for a running agent's answer to "status". Null: no agent answers.
/// @param problem why an agent that runs does not answer; null: no agent runs
std::string RunningAgentLines(const OrderedJson& agent, const OrderedJson& problem);

}  // namespace Norvik::Cli
