#pragma once

#include <memory>
#include <string>

#include "common/ipc/ICommunicationIPC.h"
#include "host/assembly/AgentHost.h"
#include "host/run/ServiceProgress.h"

namespace Norvik::Host {

/// What an administrator may request of a running agent, over its socket. A request is a JSON object
/// with the key "request" and the keys of that request. The answer is a JSON object too: with "error",
/// and "wrongUse" true if the request itself is wrong, or with the result.
///
///   status                   what runs and how far it is, who is connected, what is due next
///   notify     "what"        "software" or "hardware" has changed
///   message    "text"        shows a text to the logged-on users
///   configure  "text"        stores a configuration and applies it
class AgentRequests {
 public:
  /// @param host must outlive this object
  AgentRequests(AgentHost& host, std::shared_ptr<Common::ICommunicationIPC> processes,
                std::shared_ptr<const ServiceProgress> progress);

  /// Throws nothing but `std::bad_alloc`. A request that is refused is logged. Safe on any thread.
  /// @param from who asks
  std::string Answer(const std::string& request, const std::string& from) const;

 private:
  AgentHost& host_;
  const std::shared_ptr<Common::ICommunicationIPC> processes_;
  const std::shared_ptr<const ServiceProgress> progress_;
};

}  // namespace Norvik::Host
