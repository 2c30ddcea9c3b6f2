#include "cli/commands/InventoryRecorder.h"

#include <algorithm>
#include <boost/algorithm/string/join.hpp>
#include <utility>

namespace Norvik::Cli {

using namespace Common;

namespace {

auto Find(std::vector<RetrievedSections>& sections, const SectionKeys& keys) {
  return std::find_if(sections.begin(), sections.end(),
                      [&](const RetrievedSections& known) { return known.keys == keys; });
}

}  // namespace

std::string RetrievedSections::Name() const { return boost::algorithm::join(keys, ", "); }

InventoryRecorder::InventoryRecorder(OnSections onSections)
    : RunRecorder(RunKind::MachineInventory), onSections_(std::move(onSections)) {}

std::vector<RetrievedSections> InventoryRecorder::Sections() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return sections_;
}

void InventoryRecorder::SectionBegun(const RunInfo& /*run*/, const SectionKeys& keys) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (Find(sections_, keys) != sections_.end()) return;
  sections_.push_back({keys, 0});
  onSections_(sections_.back());
}

void InventoryRecorder::SectionEnded(const RunInfo& /*run*/, const SectionKeys& keys,
                                     Duration taken) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = Find(sections_, keys);
  if (found == sections_.end()) return;
  found->seconds += std::chrono::duration<double>(taken).count();
}

}  // namespace Norvik::Cli
