#include "host/health/Finding.h"

namespace Norvik::Host {

const char* NameOf(Outcome outcome) {
  static constexpr const char* NAMES[] = {"ok", "information", "unknown", "warning", "error"};
  return NAMES[static_cast<int>(outcome)];
}

Finding UnreadableFinding(const std::string& path) {
  return {Outcome::UNKNOWN, path + " cannot be read by this user",
          "run the check as root, or as the user of the agent"};
}

}  // namespace Norvik::Host
