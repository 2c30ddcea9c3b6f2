#pragma once

#include <boost/filesystem/path.hpp>
#include <chrono>
#include <map>
#include <string>

#include "common/configuration/AgentConfigurationInfo.h"
#include "host/HostError.h"
#include "host/configuration/ScheduleSpread.h"
#include "host/history/DocumentHistory.h"

namespace Norvik::Host {

/// A configuration is invalid. The text names the key, such as "inventorySchedule.periodSeconds",
/// and says what is expected.
class ConfigurationError : public UsageError {
 public:
  using UsageError::UsageError;
};

/// The values of all keys that a configuration leaves out. Its `kob` is always set.
Common::AgentConfigurationInfo DefaultConfiguration();

/// Parses a configuration (JSON; every key is optional). Its `kob` is always set. Throws
/// `ConfigurationError` for an unknown or repeated key, a wrong type or a value out of range.
Common::AgentConfigurationInfo ParseConfiguration(const std::string& text);

// Where the value of a key comes from.
inline constexpr char FROM_MANAGED[] = "managed preferences";
inline constexpr char FROM_FILE[] = "file";
inline constexpr char FROM_DEFAULT[] = "default";

/// A configuration as the agent uses it. A managed key replaces the value of the file as a whole.
struct EffectiveConfiguration {
  Common::AgentConfigurationInfo values;
  /// How long a tool that only queries the machine may run; 0 is unlimited.
  std::chrono::seconds toolTimeLimit{300};
  HistoryLimits history;
  ScheduleSpread spread;
  /// Goes with requests for enrolment, to nobody else; empty: none.
  std::string enrolmentSecret;
  /// By key of the first level, all of them.
  std::map<std::string, std::string> sources;
};

/// What the module of the agent with this identifier gets: its schedules are spread.
Common::AgentConfigurationInfo ForModule(const EffectiveConfiguration& configuration,
                                         const std::string& identifier);

/// The configuration with the text of a file ("{}" without one) and the managed preferences of this
/// machine. Throws `ConfigurationError` for the text as `ParseConfiguration` does, and another
/// `std::runtime_error` that names the file and the key for invalid or unreadable preferences.
EffectiveConfiguration MakeConfiguration(const std::string& text);

/// The text of a configuration file, and the configuration with it.
struct ConfigurationFile {
  std::string text;
  EffectiveConfiguration configuration;
};

/// Reads a file. Throws `UsageError` if it cannot be read, and what `MakeConfiguration` throws, a
/// `ConfigurationError` with the file's name before the text.
ConfigurationFile ReadConfigurationFile(const boost::filesystem::path& file);

/// The configuration of an agent: from the given file unless its name is empty, else from the
/// stored one if it exists, else the defaults, and from the managed preferences. Throws
/// `UsageError` for an invalid or unreadable given file, and another `std::runtime_error` for the
/// stored one, which the agent wrote itself, and for the managed preferences.
EffectiveConfiguration ReadConfiguration(const boost::filesystem::path& given,
                                         const boost::filesystem::path& stored);

}  // namespace Norvik::Host
