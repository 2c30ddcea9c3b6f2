#pragma once

#include <boost/filesystem/path.hpp>
#include <string>

#include "common/configuration/AgentConfigurationInfo.h"
#include "host/HostError.h"

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

/// The text of a configuration file, and the configuration in it.
struct ConfigurationFile {
  std::string text;
  Common::AgentConfigurationInfo configuration;
};

/// Reads and parses a file. Throws `UsageError` if it cannot be read, and `ConfigurationError`,
/// with the file's name before the text, if it is invalid.
ConfigurationFile ReadConfigurationFile(const boost::filesystem::path& file);

/// The configuration of an agent: from the given file unless its name is empty, else from the
/// stored one if it exists, else the defaults. Throws `UsageError` for an invalid or unreadable
/// given file, and another `std::runtime_error` for the stored one, which the agent wrote itself.
Common::AgentConfigurationInfo ReadConfiguration(const boost::filesystem::path& given,
                                                 const boost::filesystem::path& stored);

}  // namespace Norvik::Host
