#include "forge/agents/Measures.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace Norvik::Forge {

namespace {

constexpr std::size_t MANY_PROBLEMS = 20;

float Share(const std::vector<float>& sorted, double share) {
  if (sorted.empty()) return 0;
  const auto place = std::ceil(share * static_cast<double>(sorted.size()));
  return sorted[static_cast<std::size_t>(std::max(place, 1.0)) - 1];
}

nlohmann::json Latencies(std::vector<float> milliseconds) {
  std::sort(milliseconds.begin(), milliseconds.end());
  const auto rounded = [&](double share) {
    return std::round(static_cast<double>(Share(milliseconds, share)) * 10) / 10;
  };
  return {
      {"p50", rounded(0.5)}, {"p90", rounded(0.9)}, {"p99", rounded(0.99)}, {"max", rounded(1)}};
}

std::string LatencyText(const nlohmann::json& latencies) {
  char text[96];
  std::snprintf(text, sizeof(text), "%8.1f %8.1f %8.1f %8.1f", latencies["p50"].get<double>(),
                latencies["p90"].get<double>(), latencies["p99"].get<double>(),
                latencies["max"].get<double>());
  return text;
}

}  // namespace

void Measures::Add(const std::string& kind, const HttpAnswer& answer) {
  Requests& of = requests[kind];
  of.milliseconds.push_back(static_cast<float>(answer.seconds * 1000));
  if (answer.connectSeconds > 0) {
    ++connections;
    connectMilliseconds.push_back(static_cast<float>(answer.connectSeconds * 1000));
  }
  if (answer.status >= 200 && answer.status < 300) {
    ++of.succeeded;
    return;
  }
  // An agent that is not known any more enrols and sends the same again.
  const bool comesAgain = IsServerFailure(answer) || answer.status == 401;
  ++(comesAgain ? of.postponed : of.refused);
  if (answer.retryAfter >= 0) ++waits;
  const std::string problem =
      kind + ": " + (answer.status == 0 ? answer.error : "status " + std::to_string(answer.status));
  if (problems.size() < MANY_PROBLEMS || problems.count(problem) > 0) ++problems[problem];
}

bool Measures::IsWhole() const {
  return completed == contacts && std::all_of(requests.begin(), requests.end(), [](const auto& of) {
           return of.second.refused == 0;
         });
}

nlohmann::json Measures::AsJson() const {
  nlohmann::json kinds = nlohmann::json::object();
  for (const auto& [kind, of] : requests) {
    kinds[kind] = {{"succeeded", of.succeeded},
                   {"refused", of.refused},
                   {"postponed", of.postponed},
                   {"milliseconds", Latencies(of.milliseconds)}};
  }
  const double rate = seconds > 0 ? static_cast<double>(documents) / seconds : 0;
  return {{"contacts", contacts},
          {"completed", completed},
          {"seconds", std::round(seconds * 1000) / 1000},
          {"documents", documents},
          {"documentBytes", documentBytes},
          {"documentsPerSecond", std::round(rate * 10) / 10},
          {"tasks", tasks},
          {"retryAfter", waits},
          {"connections", connections},
          {"connectMilliseconds", Latencies(connectMilliseconds)},
          {"requests", kinds},
          {"problems", problems}};
}

std::string Measures::AsText() const {
  const nlohmann::json all = AsJson();
  char line[192];
  std::snprintf(
      line, sizeof(line),
      "%zu of %zu contacts in %.1f s: %zu documents (%.1f a second, %.1f MB), %zu tasks\n",
      completed, contacts, seconds, documents, all["documentsPerSecond"].get<double>(),
      static_cast<double>(documentBytes) / 1e6, tasks);
  std::string text = line;
  text += "milliseconds      count  refused postponed      p50      p90      p99      max\n";
  std::snprintf(line, sizeof(line), "%-12s %10zu %8s %9s ", "connect", connections, "", "");
  text += line + LatencyText(all["connectMilliseconds"]) + "\n";
  for (const auto& [kind, of] : requests) {
    std::snprintf(line, sizeof(line), "%-12s %10zu %8zu %9zu ", kind.c_str(),
                  of.milliseconds.size(), of.refused, of.postponed);
    text += line + LatencyText(all["requests"][kind]["milliseconds"]) + "\n";
  }
  for (const auto& [problem, count] : problems) {
    text += std::to_string(count) + " times " + problem + "\n";
  }
  return text;
}

}  // namespace Norvik::Forge
