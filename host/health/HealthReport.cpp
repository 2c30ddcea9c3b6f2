#include "host/health/HealthReport.h"

#include <algorithm>

#include "common/identification/HostInfoProvider.h"

namespace Norvik::Host {

std::size_t HealthReport::Count(Outcome outcome) const {
  return static_cast<std::size_t>(std::count_if(
      results.begin(), results.end(),
      [outcome](const CheckResult& result) { return result.finding.outcome == outcome; }));
}

HealthReport ExamineHealth(const HealthOptions& options, const std::vector<HealthCheck>& checks) {
  const auto examined = std::make_shared<const Examined>(options);
  return {examined->Options().dataFolder.string(), options.now, RunChecks(checks, examined)};
}

std::vector<std::string> SeparateKeys(const std::string& keys) {
  constexpr std::string_view SEPARATOR = ", ";
  std::vector<std::string> list;
  for (std::size_t start = 0; start < keys.size();) {
    const std::size_t end = std::min(keys.find(SEPARATOR, start), keys.size());
    list.push_back(keys.substr(start, end - start));
    start = end + SEPARATOR.size();
  }
  return list;
}

OrderedJson ToJson(const HealthReport& report) {
  OrderedJson checks = OrderedJson::array();
  for (const CheckResult& result : report.results) {
    checks.push_back({{"name", result.check->name},
                      {"title", result.check->title},
                      {"outcome", NameOf(result.finding.outcome)},
                      {"text", result.finding.text},
                      {"remedy", result.finding.remedy},
                      {"keys", SeparateKeys(result.finding.keys.value_or(""))},
                      {"milliseconds", result.time.count()}});
  }
  OrderedJson counts = OrderedJson::object();
  for (const Outcome outcome :
       {Outcome::OK, Outcome::INFORMATION, Outcome::UNKNOWN, Outcome::WARNING, Outcome::ERROR}) {
    counts[NameOf(outcome)] = report.Count(outcome);
  }
  return {{"agentVersion", Common::GetAgentVersion()},
          {"time", TimeText(report.time)},
          {"dataFolder", report.dataFolder},
          {"counts", counts},
          {"checks", checks}};
}

}  // namespace Norvik::Host
