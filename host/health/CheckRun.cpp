#include "host/health/CheckRun.h"

#include <atomic>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>

#include "host/HostError.h"

namespace Norvik::Host {

namespace {

using std::chrono::steady_clock;

std::atomic<int>& RunningChecks() {
  static std::atomic<int> count{0};
  return count;
}

/// What the threads share with their caller, who may leave first.
struct Run {
  Run(const std::vector<HealthCheck>& wanted, std::shared_ptr<const Examined> what)
      : checks(wanted), examined(std::move(what)), results(wanted.size()), missing(wanted.size()) {}

  const std::vector<HealthCheck> checks;
  const std::shared_ptr<const Examined> examined;
  const steady_clock::time_point begin = steady_clock::now();
  std::mutex mutex;
  std::condition_variable changed;
  std::vector<boost::optional<CheckResult>> results;
  std::size_t missing;
};

Finding Find(const HealthCheck& check, const Examined& examined) {
  try {
    return check.find(examined);
  } catch (const std::exception& error) {
    return {Outcome::UNKNOWN, ReasonOf(error)};
  }
}

CheckResult Complete(const HealthCheck& check, Finding finding, steady_clock::time_point begin) {
  if (finding.outcome == Outcome::OK) {
    finding.remedy.clear();
    finding.keys = "";
  }
  if (finding.outcome != Outcome::OK && finding.remedy.empty()) finding.remedy = check.remedy;
  // What is only worth knowing leaves nothing empty, unless it says so.
  const bool isHarmless = finding.outcome == Outcome::INFORMATION;
  if (!finding.keys) finding.keys = isHarmless ? "" : check.keys;
  const auto time = steady_clock::now() - begin;
  return {&check, std::move(finding), std::chrono::duration_cast<std::chrono::milliseconds>(time)};
}

void Store(Run& run, std::size_t at, Finding finding) {
  CheckResult result = Complete(run.checks[at], std::move(finding), run.begin);
  const std::lock_guard<std::mutex> lock(run.mutex);
  run.results[at] = std::move(result);
  --run.missing;
  run.changed.notify_all();
}

void Start(const std::shared_ptr<Run>& run, std::size_t at) {
  ++RunningChecks();
  try {
    std::thread([run, at] {
      Finding finding = Find(run->checks[at], *run->examined);
      --RunningChecks();
      Store(*run, at, std::move(finding));
    }).detach();
  } catch (const std::system_error& error) {
    --RunningChecks();
    Store(*run, at, {Outcome::UNKNOWN, std::string("no thread could be started: ") + error.what()});
  }
}

}  // namespace

std::vector<CheckResult> RunChecks(const std::vector<HealthCheck>& checks,
                                   const std::shared_ptr<const Examined>& examined,
                                   std::chrono::milliseconds limit) {
  const auto run = std::make_shared<Run>(checks, examined);
  for (std::size_t at = 0; at < checks.size(); ++at) Start(run, at);
  std::vector<CheckResult> results;
  std::unique_lock<std::mutex> lock(run->mutex);
  run->changed.wait_until(lock, run->begin + limit, [&] { return run->missing == 0; });
  for (std::size_t at = 0; at < checks.size(); ++at) {
    if (!run->results[at]) {
      const std::string text =
          "the check did not end within " + std::to_string(limit.count()) + " ms";
      run->results[at] = Complete(checks[at], {Outcome::UNKNOWN, text}, run->begin);
    }
    results.push_back(*run->results[at]);
    results.back().check = &checks[at];
  }
  return results;
}

bool AreChecksRunning() { return RunningChecks() > 0; }

}  // namespace Norvik::Host
