#pragma once

#include <boost/filesystem/path.hpp>
#include <string>

#include "common/configuration/AgentConfigurationInfo.h"
#include "host/HostError.h"

namespace Norvik::Host {

/// A configuration says something that it may not. The text names the key, as in
/// "inventorySchedule.periodSeconds", and what it wants.
class ConfigurationError : public UsageError {
 public:
  using UsageError::UsageError;
};

/// What holds for every key that a configuration leaves out. Always has this product's record.
Common::AgentConfigurationInfo DefaultConfiguration();

/// Reads a configuration (JSON; every key optional). Raises `ConfigurationError` for an unknown or
/// repeated key, a wrong type or a value out of range.
Common::AgentConfigurationInfo ParseConfiguration(const std::string& text);

/// A configuration file and what it says.
struct ConfigurationFile {
  std::string text;
  Common::AgentConfigurationInfo configuration;
};

/// The same from a file, with the file's name before the text of an error. Raises `UsageError` also
/// for a file that cannot be read.
ConfigurationFile ReadConfigurationFile(const boost::filesystem::path& file);

/// What an agent goes by: the given file unless its name is empty, else the stored one, else the
/// defaults. Raises `UsageError` for a given file, another `std::runtime_error` for the stored one,
/// which the agent wrote itself.
Common::AgentConfigurationInfo ReadConfiguration(const boost::filesystem::path& given,
                                                 const boost::filesystem::path& stored);

}  // namespace Norvik::Host
