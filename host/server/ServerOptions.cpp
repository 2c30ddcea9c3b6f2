#include "host/server/ServerOptions.h"

namespace Norvik::Host {

namespace {

constexpr std::uint64_t PORT_BITS = 0xFFFF;

}  // namespace

std::string ServerOptions::Origin() const {
  const bool needsBrackets = address.find(':') != std::string::npos && address.front() != '[';
  const std::string host = needsBrackets ? "[" + address + "]" : address;
  return scheme + "://" + host + ":" + std::to_string(port);
}

ServerOptions ServerOptionsOf(const Common::CommunicationsInfo& configuration) {
  ServerOptions options;
  options.address = configuration.address;
  options.port = static_cast<std::uint16_t>(configuration.port & PORT_BITS);
  options.caFile = configuration.certificateFile;
  if (configuration.connectTimeoutSeconds > 0) {
    options.limits.connect = std::chrono::seconds(configuration.connectTimeoutSeconds);
  }
  if (configuration.requestTimeoutSeconds > 0) {
    options.limits.request = std::chrono::seconds(configuration.requestTimeoutSeconds);
  }
  return options;
}

}  // namespace Norvik::Host
