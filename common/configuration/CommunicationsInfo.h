#pragma once

#include <cstdint>
#include <string>

#include "common/Api.h"
#include "common/configuration/UniqueQueue.h"

namespace Norvik::Common {

struct NORVIK_COMMON_API ConfigurationInfoBase {
  ConfigurationInfoBase() = default;
  ConfigurationInfoBase(const ConfigurationInfoBase&) = default;
  ConfigurationInfoBase& operator=(const ConfigurationInfoBase&) = default;
  virtual ~ConfigurationInfoBase();
};

/// How the agent reaches its server.
struct NORVIK_COMMON_API CommunicationsInfo : ConfigurationInfoBase {
  std::uint64_t port = 0;  ///< the server's port in the low 16 bits
  std::uint64_t connectTimeoutSeconds = 0;
  std::uint64_t requestTimeoutSeconds = 0;
  std::uint64_t retrySeconds = 0;
  std::string address;  ///< the server's name or address; empty without a server
  std::string basePath;
  std::string proxy;
  std::string certificateFile;
  UniqueQueue alternates;
  std::string proxyUser;
  bool verifyPeer = true;
  std::string proxyPassword;
};

}  // namespace Norvik::Common
