#include "cli/commands/InventoryReport.h"

#include <algorithm>

#include "cli/commands/Rendering.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

using Common::TaskResponseInfo;
using Records = std::map<std::string, SectionCount>;

/// "one record, 3": the records under each of the keys.
std::string RecordsText(const Common::SectionKeys& keys, const Records& records) {
  std::string text;
  for (const auto& key : keys) {
    const auto found = records.find(key);
    if (found == records.end()) continue;
    const SectionCount& count = found->second;
    const bool isOneRecord = !count.isList && count.records == 1;
    if (!text.empty()) text += ", ";
    text += isOneRecord ? "one record" : std::to_string(count.records);
  }
  return text;
}

/// Null if the document has none of the keys.
OrderedJson SumOfRecords(const Common::SectionKeys& keys, const Records& records) {
  OrderedJson sum;
  for (const auto& key : keys) {
    const auto found = records.find(key);
    if (found == records.end()) continue;
    sum = (sum.is_null() ? 0 : sum.get<std::size_t>()) + found->second.records;
  }
  return sum;
}

}  // namespace

bool InventoryReport::Succeeded() const {
  const bool anyFailed =
      std::any_of(statuses.begin(), statuses.end(), [](const TaskResponseInfo& status) {
        return status.status == TaskResponseInfo::TASK_FAILED;
      });
  return AllStepsDone() && !anyFailed && Bytes() > 0;
}

std::string InventoryReport::ToText() const {
  std::vector<std::vector<OrderedJson>> rows = {{"section", "time", "records"}};
  for (const auto& section : sections) {
    rows.push_back(
        {section.Name(), SecondsText(section.seconds), RecordsText(section.keys, records)});
  }
  std::string text = TableText(rows);
  for (const auto& status : statuses) text += "status: " + StatusText(status) + "\n";
  if (!fallbackReason.empty()) text += "total instead of incremental: " + fallbackReason + "\n";
  if (!File().empty()) {
    text += "document: " + File().string() + ", " + SizeText(Bytes()) + ", " + SentKind() + "\n";
  }
  return text + "taken in " + SecondsText(seconds) + "\n";
}

std::string InventoryReport::ToJsonText() const {
  OrderedJson sectionList = OrderedJson::array();
  for (const auto& section : sections) {
    sectionList.push_back({{"name", section.Name()},
                           {"seconds", section.seconds},
                           {"records", SumOfRecords(section.keys, records)}});
  }
  OrderedJson counts = OrderedJson::object();
  for (const auto& [key, count] : records) counts[key] = count.records;
  return JsonLine({{"success", Succeeded()},
                   {"requested", requestedIncremental ? "incremental" : "total"},
                   {"kind", SentKind()},
                   {"fallback", fallbackReason},
                   {"file", File().string()},
                   {"bytes", Bytes()},
                   {"seconds", seconds},
                   {"sections", sectionList},
                   {"records", counts},
                   {"steps", StepsToJson(steps)},
                   {"statuses", StatusesToJson(statuses)},
                   {"problems", problems}});
}

}  // namespace Norvik::Cli
