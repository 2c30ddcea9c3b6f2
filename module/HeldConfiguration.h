#pragma once

#include <boost/optional.hpp>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "common/configuration/AgentConfigurationInfo.h"
#include "common/database/IDataBase.h"

namespace Norvik::KOB {

/// What `operator<<` writes, independent of the locale. A configuration has changed if this text
/// differs from the stored one.
std::string ConfigurationText(const Common::KobConfigurationInfo& configuration);

/// An action class's own copy of the agent's configuration. Thread-safe.
class HeldConfiguration {
 public:
  explicit HeldConfiguration(const Common::AgentConfigurationInfo& agent);

  /// Copies the profile and the module's configuration, and stores the text of the latter in the
  /// agent data; a failure to store it is logged. If `agent` has no module configuration, logs an
  /// error and copies the profile only.
  void Replace(const Common::AgentConfigurationInfo& agent,
               const std::weak_ptr<Common::IDataBase>& dataBase);

  /// A copy, because another thread may replace the configuration at any time. Empty if the agent
  /// has none.
  boost::optional<Common::KobConfigurationInfo> Kob() const;
  std::uint32_t ProfileId() const;
  /// As they were at construction: `Replace` does not change them.
  const Common::CommunicationsInfo& Communications() const { return communications_; }

 private:
  const Common::CommunicationsInfo communications_;
  mutable std::mutex lock_;
  boost::optional<Common::KobConfigurationInfo> kob_;
  std::uint32_t profileId_;
};

}  // namespace Norvik::KOB
