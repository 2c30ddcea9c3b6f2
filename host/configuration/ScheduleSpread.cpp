#include "host/configuration/ScheduleSpread.h"

#include <sodium.h>

#include <algorithm>
#include <array>
#include <cstdint>

namespace Norvik::Host {

namespace {

constexpr std::int64_t PARTS = 1 << 16;

/// From 0 to below `PARTS`, alike for all versions of the agent.
std::int64_t PartOf(const std::string& identifier) {
  std::array<unsigned char, crypto_hash_sha256_BYTES> hash{};
  crypto_hash_sha256(hash.data(), reinterpret_cast<const unsigned char*>(identifier.data()),
                     identifier.size());
  return hash[0] * 256 + hash[1];
}

}  // namespace

void SpreadSchedules(Common::KobConfigurationInfo& configuration, const ScheduleSpread& spread,
                     const std::string& identifier) {
  const std::int64_t part = PartOf(identifier);
  for (auto* const schedule :
       {&configuration.inventorySchedule, &configuration.fileInventoryIncrementalSchedule,
        &configuration.fileInventorySchedule, &configuration.pendingTasksSchedule}) {
    if (!*schedule) continue;
    const std::int64_t range = (*schedule)->periodSeconds * spread.percent / 100;
    (*schedule)->next += std::min<std::int64_t>(range, spread.most.count()) * part / PARTS;
  }
}

}  // namespace Norvik::Host
