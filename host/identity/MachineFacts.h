#pragma once

#include <boost/optional.hpp>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>

#include "common/identification/IIdentificationSystem.h"
#include "host/identity/AgentIdentity.h"

namespace Norvik::Host {

/// The agent's identity, and the facts of the machine, gathered anew by each request for them. Safe
/// on any thread; requests wait for one another.
class MachineFacts : public Common::IIdentificationSystem {
 public:
  /// How long what was gathered for the module may serve the next request.
  static constexpr std::chrono::seconds SERVES_FOR{10};

  explicit MachineFacts(std::shared_ptr<const AgentIdentity> identity);
  ~MachineFacts() override;

  /// To be called once the module is made. What was gathered for that also serves the next request,
  /// if it comes within `SERVES_FOR`, so that the first inventory does not start all tools twice.
  void ModuleIsMade();

  Common::FirstInventoryInfo GetFirstInventoryInfo() override;
  /// The firmware's table, which does not change while the system runs: read again only if it
  /// was missing.
  std::weak_ptr<Common::SmBios> GetSmBios() override;
  std::string GetAgentIdentifier() override { return identity_->Get().identifier; }
  std::string GetToken() override { return identity_->Get().token; }

 private:
  void ReadTable();

  const std::shared_ptr<const AgentIdentity> identity_;
  std::mutex mutex_;
  std::shared_ptr<Common::SmBios> smBios_;
  std::shared_ptr<Common::SmBios> noTable_;  ///< the former one, which an inventory may still use
  bool isModuleMade_ = false;
  boost::optional<Common::FirstInventoryInfo> forModule_;
  std::chrono::steady_clock::time_point gathered_;  ///< when `forModule_` was
};

}  // namespace Norvik::Host
