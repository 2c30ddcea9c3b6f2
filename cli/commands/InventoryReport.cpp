#include "cli/commands/InventoryReport.h"

#include <algorithm>
#include <boost/filesystem/operations.hpp>

#include "cli/commands/Rendering.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

using Common::TaskResponseInfo;

OrderedJson ToJson(const boost::optional<std::size_t>& number) {
  return number ? OrderedJson(*number) : OrderedJson();
}

}  // namespace

const PipelineStep* InventoryReport::Move() const {
  const auto found = std::find_if(steps.rbegin(), steps.rend(), [](const PipelineStep& step) {
    return step.kind == PipelineStep::MOVE && step.done && step.incremental;
  });
  return found == steps.rend() ? nullptr : &*found;
}

boost::filesystem::path InventoryReport::File() const {
  const PipelineStep* const move = Move();
  return move ? move->target : boost::filesystem::path();
}

std::uintmax_t InventoryReport::Bytes() const {
  boost::system::error_code absent;
  const std::uintmax_t size = boost::filesystem::file_size(File(), absent);
  return absent ? 0 : size;
}

std::string InventoryReport::Kind() const {
  const PipelineStep* const move = Move();
  if (!move) return "";
  return *move->incremental ? "incremental" : "total";
}

bool InventoryReport::Succeeded() const {
  const bool allDone =
      std::all_of(steps.begin(), steps.end(), [](const PipelineStep& step) { return step.done; });
  const bool anyFailed =
      std::any_of(statuses.begin(), statuses.end(), [](const TaskResponseInfo& status) {
        return status.status == TaskResponseInfo::TASK_FAILED;
      });
  return Move() && allDone && !anyFailed && Bytes() > 0;
}

boost::optional<std::size_t> InventoryReport::RecordsOf(const RetrievedSection& section) const {
  boost::optional<std::size_t> sum;
  for (const auto& key : section.documentKeys) {
    const auto found = records.find(key);
    if (found != records.end()) sum = sum.get_value_or(0) + found->second;
  }
  return sum;
}

std::string InventoryReport::ToText() const {
  std::vector<std::vector<OrderedJson>> rows = {{"section", "time", "records"}};
  for (const auto& section : sections) {
    rows.push_back({section.name, SecondsText(section.seconds), ToJson(RecordsOf(section))});
  }
  std::string text = TableText(rows);
  for (const auto& status : statuses) text += "status: " + StatusText(status) + "\n";
  if (!fallbackReason.empty()) text += "total instead of incremental: " + fallbackReason + "\n";
  if (Move()) {
    text += "document: " + File().string() + ", " + std::to_string(Bytes()) + " bytes, " + Kind() +
            "\n";
  }
  return text + "taken in " + SecondsText(seconds) + "\n";
}

std::string InventoryReport::ToJsonText() const {
  OrderedJson sectionList = OrderedJson::array();
  for (const auto& section : sections) {
    sectionList.push_back({{"name", section.name},
                           {"seconds", section.seconds},
                           {"records", ToJson(RecordsOf(section))}});
  }
  return JsonLine({{"success", Succeeded()},
                   {"requested", requestedIncremental ? "incremental" : "total"},
                   {"kind", Kind()},
                   {"fallback", fallbackReason},
                   {"file", File().string()},
                   {"bytes", Bytes()},
                   {"seconds", seconds},
                   {"sections", sectionList},
                   {"records", records},
                   {"steps", StepsToJson(steps)},
                   {"statuses", StatusesToJson(statuses)},
                   {"problems", problems}});
}

}  // namespace Norvik::Cli
