#pragma once

#include <boost/optional.hpp>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "common/configuration/AgentConfigurationInfo.h"
#include "common/database/IDataBase.h"

namespace Norvik::KOB {

/// The text of `operator<<`, in any locale. A configuration has changed if this text has.
std::string ConfigurationText(const Common::KobConfigurationInfo& configuration);

/// The copy of the agent's configuration that a class of actions works with. Any thread may call
/// any member.
class HeldConfiguration {
 public:
  explicit HeldConfiguration(const Common::AgentConfigurationInfo& agent);

  /// Takes over the profile and the module's configuration, and stores the text of the latter in
  /// the agent data; a failure to store it is logged. Without a module's configuration, logs an
  /// error and takes over the profile only.
  void Replace(const Common::AgentConfigurationInfo& agent,
               const std::weak_ptr<Common::IDataBase>& dataBase);

  /// A copy: another thread may replace the configuration at any time.
  boost::optional<Common::KobConfigurationInfo> Kob() const;
  std::uint32_t ProfileId() const;
  /// As they were at construction: a later configuration does not replace them.
  const Common::CommunicationsInfo& Communications() const { return communications_; }

 private:
  const Common::CommunicationsInfo communications_;
  mutable std::mutex lock_;
  boost::optional<Common::KobConfigurationInfo> kob_;
  std::uint32_t profileId_;
};

}  // namespace Norvik::KOB
