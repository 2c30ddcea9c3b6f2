#pragma once

#include <memory>
#include <string>

#include "common/ipc/ICommunicationIPC.h"
#include "host/assembly/AgentHost.h"
#include "host/run/ServiceProgress.h"

namespace Norvik::Host {

/// The requests that an administrator may send to a running agent over its socket. A request is a
/// JSON object with its name under "request", and the keys below. An answer is a JSON object with
/// the result, or with the reason under "error" and, under "wrongUse", whether the request itself
/// is invalid.
///
///   status                   returns what runs and how far it is, who is connected, and what is
///   due next notify     "what"        reports that "software" or "hardware" has changed message
///   "text"        shows a text to the logged-on users configure  "text"        stores a
///   configuration and applies it
class AgentRequests {
 public:
  /// @param host must outlive this object
  AgentRequests(AgentHost& host, std::shared_ptr<Common::ICommunicationIPC> processes,
                std::shared_ptr<const ServiceProgress> progress);

  /// Carries out a request and returns the answer. Throws only `std::bad_alloc`. A refused request
  /// is logged. Safe on any thread.
  /// @param from the sender, for the log
  std::string Answer(const std::string& request, const std::string& from) const;

 private:
  AgentHost& host_;
  const std::shared_ptr<Common::ICommunicationIPC> processes_;
  const std::shared_ptr<const ServiceProgress> progress_;
};

}  // namespace Norvik::Host
