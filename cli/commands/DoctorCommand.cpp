#include <algorithm>
#include <boost/algorithm/string/join.hpp>
#include <ostream>

#include "cli/commands/Commands.h"
#include "cli/commands/HealthOptionsOf.h"
#include "cli/commands/NearestName.h"
#include "cli/commands/Rendering.h"
#include "cli/commands/SupportBundle.h"
#include "common/text/Text.h"
#include "host/HostError.h"
#include "host/health/HealthReport.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

using Common::EscapeControls;

constexpr char ALL_KEYS[] = "*";

int List(bool json, std::ostream& output) {
  OrderedJson list = OrderedJson::array();
  std::vector<std::vector<OrderedJson>> rows;
  for (const HealthCheck& check : HealthChecks()) {
    list.push_back({{"name", check.name},
                    {"title", check.title},
                    {"remedy", check.remedy},
                    {"keys", SeparateKeys(check.keys)}});
    rows.push_back({check.name, check.title});
  }
  output << (json ? JsonLine(list) : TableText(rows));
  return EXIT_DONE;
}

std::vector<HealthCheck> Chosen(const std::string& name) {
  const auto& all = HealthChecks();
  if (name.empty()) return all;
  std::vector<std::string> names;
  for (const HealthCheck& check : all) {
    if (name == check.name) return {check};
    names.emplace_back(check.name);
  }
  throw UsageError(UnknownName("check", name, names));
}

std::string LinesOf(const CheckResult& result) {
  const Finding& finding = result.finding;
  std::string outcome = NameOf(finding.outcome);
  outcome.resize(13, ' ');
  std::string text = outcome + result.check->name + ": " + EscapeControls(finding.text) + "\n";
  if (finding.outcome == Outcome::OK) return text;
  const std::string indent(13, ' ');
  text += indent + "to do: " + EscapeControls(finding.remedy) + "\n";
  const std::string keys = finding.keys.value_or("");
  const bool isSure = finding.outcome != Outcome::UNKNOWN;
  if (keys.empty()) return text;
  if (keys == ALL_KEYS) {
    return text + indent +
           (isSure ? "until then there is no document\n" : "there may be no document\n");
  }
  return text + indent + (isSure ? "empty: " : "may be empty: ") + keys + "\n";
}

std::string NamesWith(const HealthReport& report, Outcome outcome) {
  std::vector<std::string> names;
  for (const CheckResult& result : report.results) {
    if (result.finding.outcome == outcome) names.emplace_back(result.check->name);
  }
  return boost::join(names, ", ");
}

std::string Summary(const HealthReport& report) {
  std::vector<std::string> parts;
  for (const Outcome outcome :
       {Outcome::ERROR, Outcome::WARNING, Outcome::UNKNOWN, Outcome::INFORMATION, Outcome::OK}) {
    parts.push_back(std::to_string(report.Count(outcome)) + " " + NameOf(outcome));
  }
  return std::to_string(report.results.size()) + " checks of " + EscapeControls(report.dataFolder) +
         ": " + boost::join(parts, ", ") + "\n";
}

}  // namespace

int RunDoctor(const CommandLine& line, std::ostream& output, std::ostream& errors) {
  if (line.list && !line.what.empty()) throw UsageError("--list lists all checks and takes none");
  if (line.list) return List(line.json, output);
  if (!line.bundle.empty()) {
    if (!line.what.empty()) throw UsageError("--bundle runs all checks and takes none");
    return WriteSupportBundle(line, output);
  }
  const std::vector<HealthCheck> checks = Chosen(line.what);
  const LoggerScope silence(std::make_shared<ListeningLogger>(nullptr, LogListener()));
  const HealthReport report = ExamineHealth(HealthOptionsOf(line), checks);
  if (line.json) {
    output << JsonLine(ToJson(report));
  } else {
    for (const CheckResult& result : report.results) output << LinesOf(result);
    output << Summary(report);
  }
  if (report.Count(Outcome::ERROR) == 0) return EXIT_DONE;
  errors << MessageLine(line.json, "an error is found by " + NamesWith(report, Outcome::ERROR))
         << std::flush;
  return EXIT_FAILED;
}

}  // namespace Norvik::Cli
