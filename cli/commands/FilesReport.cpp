#include "cli/commands/FilesReport.h"

#include "cli/commands/Rendering.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

std::string CountsText(const FilesReport& report) {
  const Common::FilesCounts& counts = report.counts;
  std::string text = "files: ";
  if (report.kind == "incremental") {
    text += std::to_string(counts.added) + " added, " + std::to_string(counts.removed) +
            " removed, " + std::to_string(counts.modified) + " modified";
  } else {
    text += std::to_string(counts.total);
  }
  return text + "; " + std::to_string(report.folders) + " folders read\n";
}

OrderedJson CountsJson(const FilesReport& report) {
  const Common::FilesCounts& counts = report.counts;
  if (report.kind.empty()) return nullptr;
  if (report.kind == "total") return {{"total", counts.total}};
  return {{"added", counts.added}, {"removed", counts.removed}, {"modified", counts.modified}};
}

}  // namespace

bool FilesReport::Succeeded() const {
  return !kind.empty() && problems.empty() && AllStepsDone() && (nothingToSend || Bytes() > 0);
}

std::string FilesReport::ToText() const {
  std::vector<std::vector<OrderedJson>> rows = {{"phase", "time"}};
  for (const auto& [phase, taken] : phases) {
    rows.push_back({Common::NameOf(phase), SecondsText(taken)});
  }
  std::string text = TableText(rows) + CountsText(*this);
  for (const auto& status : statuses) text += "status: " + StatusText(status) + "\n";
  if (!fallbackReason.empty()) text += "total instead of incremental: " + fallbackReason + "\n";
  if (nothingToSend) text += "document: none, there is nothing to report\n";
  if (!File().empty()) {
    text += "document: " + File().string() + ", " + SizeText(Bytes()) + ", " + kind + "\n";
  }
  return text + "taken in " + SecondsText(seconds) + "\n";
}

std::string FilesReport::ToJsonText() const {
  OrderedJson phaseList = OrderedJson::array();
  for (const auto& [phase, taken] : phases) {
    phaseList.push_back({{"name", Common::NameOf(phase)}, {"seconds", taken}});
  }
  return JsonLine({{"success", Succeeded()},
                   {"requested", requestedIncremental ? "incremental" : "total"},
                   {"kind", kind},
                   {"fallback", fallbackReason},
                   {"file", File().string()},
                   {"bytes", Bytes()},
                   {"seconds", seconds},
                   {"folders", folders},
                   {"files", CountsJson(*this)},
                   {"phases", phaseList},
                   {"steps", StepsToJson(steps)},
                   {"statuses", StatusesToJson(statuses)},
                   {"problems", problems}});
}

}  // namespace Norvik::Cli
