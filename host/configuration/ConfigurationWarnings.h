#pragma once

#include <boost/filesystem/path.hpp>
#include <string>
#include <vector>

#include "common/configuration/AgentConfigurationInfo.h"

namespace Norvik::Host {

/// An entry of a valid configuration that probably does not do what is intended.
struct ConfigurationWarning {
  std::string key;    ///< "excludedPaths"
  std::string value;  ///< the entry; empty if an entry is missing
  std::string text;   ///< completes a sentence that begins with the entry or the key
};

/// Whether a file inventory of this configuration can list no file.
bool WantsNoFile(const Common::KobConfigurationInfo& configuration);
/// What to do then, as a sentence for users.
inline constexpr char NO_FILE_WANTED[] =
    "no extension is wanted, so a file inventory lists no file: set includedExtensions in the "
    "configuration";

/// The settings of the file inventory that match nothing or have another effect than expected, and
/// those of the server that cannot work. Checks the folders and files of this machine. The
/// configuration's `kob` must be set.
/// @param keyFolder of the agent, where the server's key must be
std::vector<ConfigurationWarning> WarningsOf(const Common::AgentConfigurationInfo& configuration,
                                             const boost::filesystem::path& keyFolder);

/// Why no document can be delivered to the configured server, as in "FILE is missing"; empty if
/// there is no reason or no server.
std::string DeliveryProblem(const Common::CommunicationsInfo& server,
                            const boost::filesystem::path& keyFolder);

}  // namespace Norvik::Host
