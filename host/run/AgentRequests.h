#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>

#include "host/actions/SerialActions.h"
#include "host/assembly/AgentHost.h"
#include "host/ipc/IpcService.h"
#include "host/run/ServiceProgress.h"

namespace Norvik::Host {

/// The requests that an administrator may send to a running agent over its socket. A request is a
/// JSON object with its name under "request", and the keys below. An answer is a JSON object with
/// the result, or with the reason under "error" and, under "wrongUse", whether the request itself
/// is invalid.
///
/// - status: returns what runs and how far it is, who is connected, how many messages of users were
///   handled, and what is due next
/// - run, "code", "parameters": runs an action, and reports what it does until it has ended; see
///   `CommandRun`
/// - notify, "what": reports that "software" or "hardware" has changed
/// - message, "text": shows a text to the logged-on users. Texts are sent in their order, the next
///   one when the users' processes have read most of the last or a second has passed
/// - configure, "text": stores a configuration and applies it
class AgentRequests {
 public:
  /// @param host must outlive this object
  /// @param configurationFile that the agent uses in place of the stored one; or empty
  AgentRequests(AgentHost& host, boost::filesystem::path configurationFile,
                std::shared_ptr<IpcService> processes,
                std::shared_ptr<const ServiceProgress> progress);

  /// Carries out a request, and answers it at once or when its action has ended. Throws only
  /// `std::bad_alloc`. A refused request is logged. Safe on any thread.
  void Answer(const std::string& request, const std::shared_ptr<IpcConnection>& from) const;

 private:
  AgentHost& host_;
  const boost::filesystem::path configurationFile_;
  const std::shared_ptr<IpcService> processes_;
  const std::shared_ptr<const ServiceProgress> progress_;
  const std::shared_ptr<SerialActions>
      texts_;  ///< the module refuses a text while it sends another
  /// The bytes of the texts that wait to be sent.
  const std::shared_ptr<std::atomic<std::size_t>> waiting_;
};

}  // namespace Norvik::Host
