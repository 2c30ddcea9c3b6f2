#include "host/IdentityStore.h"

#include <utility>

namespace Norvik::Host {

IdentityStore::IdentityStore(const boost::filesystem::path& file)
    : file_(file), identity_(ReadOrMakeIdentity(file)) {}

AgentIdentity IdentityStore::Get() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return identity_;
}

void IdentityStore::Acknowledge(const std::string& server, const std::string& token) {
  const std::lock_guard<std::mutex> lock(mutex_);
  AgentIdentity next{identity_.identifier, token, server};
  WriteIdentity(file_, next);
  identity_ = std::move(next);
}

void IdentityStore::Revoke() {
  const std::lock_guard<std::mutex> lock(mutex_);
  identity_.server.clear();
}

}  // namespace Norvik::Host
