#include <sys/resource.h>

#include <cstdlib>
#include <ctime>

#include "host/health/Checks.h"
#include "platform/LocalAccounts.h"
#include "platform/MachinePath.h"

namespace Norvik::Host {

namespace {

using std::chrono::system_clock;

/// What the service needs for its connections, tools and files.
constexpr rlim_t WANTED_DESCRIPTORS = 1024;
/// 2025, before the first release of this program, and the last year that all texts of dates hold.
constexpr std::time_t EARLIEST = 1'735'689'600;
constexpr std::time_t LATEST = 4'000'000'000;

}  // namespace

Finding FindHostName(const Examined& /*examined*/) {
  const std::string name = Platform::HostName();
  const bool isNone = name.empty() || name == "localhost" || name == "localhost.localdomain";
  if (isNone) return {Outcome::WARNING, "the machine has no name of its own: \"" + name + "\""};
  return {Outcome::OK, name};
}

Finding FindClock(const Examined& examined) {
  const auto now = system_clock::to_time_t(examined.Options().now);
  const std::string text = "it is " + TimeText(examined.Options().now);
  return {now < EARLIEST || now > LATEST ? Outcome::ERROR : Outcome::OK, text};
}

/// Without a zone the system takes local time for UTC, without a word.
Finding FindTimeZone(const Examined& examined) {
  const std::time_t now = system_clock::to_time_t(examined.Options().now);
  std::tm local{};
  if (!::localtime_r(&now, &local)) return {Outcome::ERROR, "there is no local time"};
  char text[64] = {};
  std::strftime(text, sizeof(text), "%Z (%z)", &local);
  if (std::getenv("TZ") || PresenceOf(Platform::MachinePath("/etc/localtime")) == Presence::THERE) {
    return {Outcome::OK, text};
  }
  return {Outcome::INFORMATION, "no time zone is set, so it is UTC"};
}

Finding FindDescriptorLimit(const Examined& /*examined*/) {
  rlimit limit{};
  if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) {
    return {Outcome::UNKNOWN, "the limit is not known"};
  }
  const bool isUnlimited = limit.rlim_max == RLIM_INFINITY;
  const std::string text = "a process started as this one may open " +
                           (isUnlimited ? "any number" : std::to_string(limit.rlim_max));
  return {limit.rlim_max < WANTED_DESCRIPTORS ? Outcome::WARNING : Outcome::OK, text};
}

}  // namespace Norvik::Host
