#include "host/ledger/LedgerRecorder.h"

#include <algorithm>
#include <boost/format.hpp>
#include <utility>

#include "common/commands/ToolOfLine.h"
#include "common/log/Logger.h"
#include "host/identity/MachineFacts.h"
#include "host/ledger/LedgerTable.h"

namespace Norvik::Host {

using namespace Common;

namespace {

/// Commands of one section that are kept apart; further ones count by the name of their tool.
constexpr std::size_t MOST_COMMANDS = 16;
/// Bytes of a command that are kept.
constexpr std::size_t LONGEST_COMMAND = 120;

std::int64_t Milliseconds(IProgressListener::Duration duration) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(duration).count();
}

std::string OutcomeText(ToolRun::Outcome outcome, int exitCode) {
  switch (outcome) {
    case ToolRun::FAILED:
      return "exit code " + std::to_string(exitCode);
    case ToolRun::MISSING:
      return "missing";
    case ToolRun::NOT_STARTED:
      return "not started";
    case ToolRun::TOO_LONG:
      return "time limit";
    case ToolRun::TOO_MUCH:
      return "printed too much";
    case ToolRun::DONE:
      break;
  }
  return "done";
}

}  // namespace

auto LedgerRecorder::NewRun() -> Run {
  Run run;
  run.begun = std::chrono::system_clock::now();
  run.start = run.last = std::chrono::steady_clock::now();
  return run;
}

auto LedgerRecorder::Find(const RunInfo& run) -> Run* {
  if (run.kind != RunKind::MachineInventory) return nullptr;
  const auto found = runs_.find(run.id);
  return found == runs_.end() ? nullptr : &found->second;
}

auto LedgerRecorder::SectionIn(Run& run, const SectionKeys& keys) -> Section& {
  const auto found = std::find_if(run.sections.begin(), run.sections.end(),
                                  [&](const Section& known) { return known.keys == keys; });
  if (found != run.sections.end()) return *found;
  run.sections.push_back({keys, Duration(0), {}});
  return run.sections.back();
}

auto LedgerRecorder::ToolIn(Section& section, const std::string& command) -> Tool& {
  const auto find = [&](const std::string& text) {
    return std::find_if(section.tools.begin(), section.tools.end(),
                        [&](const Tool& known) { return known.command == text; });
  };
  std::string text = command.substr(0, LONGEST_COMMAND);
  auto found = find(text);
  if (found == section.tools.end() && section.tools.size() >= MOST_COMMANDS) {
    text = ToolOfLine(text);
    found = find(text);
  }
  if (found != section.tools.end()) return *found;
  section.tools.emplace_back().command = text;
  return section.tools.back();
}

void LedgerRecorder::RunBegun(const RunInfo& run) {
  if (run.kind != RunKind::MachineInventory) return;
  const std::lock_guard<std::mutex> lock(mutex_);
  Run begun = NewRun();
  const auto before = runs_.find(0);
  if (before != runs_.end()) {
    // As long as the run uses it in place of gathering it itself.
    if (begun.start - before->second.last < MachineFacts::SERVES_FOR) {
      begun.sections = std::move(before->second.sections);
      for (const Section& section : begun.sections) begun.before += section.taken;
    }
    runs_.erase(before);
  }
  runs_[run.id] = std::move(begun);
}

void LedgerRecorder::RunEnded(const RunInfo& run) {
  std::unique_lock<std::mutex> lock(mutex_);
  const Run* const ended = Find(run);
  if (!ended) return;
  const OrderedJson json = ToJson(*ended);
  runs_.erase(run.id);
  lock.unlock();
  try {
    WriteLedgerRun(json);
  } catch (const std::exception& error) {
    NORVIK_WARNING(boost::format("The ledger of runs is not written: %1%") % error.what());
  }
}

void LedgerRecorder::KindDecided(const RunInfo& run, bool incremental) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (Run* const known = Find(run)) known->kind = incremental ? "incremental" : "total";
}

void LedgerRecorder::TotalInstead(const RunInfo& run, const std::string& /*reason*/) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (Run* const known = Find(run)) known->kind = "total";
}

void LedgerRecorder::SectionBegun(const RunInfo& run, const SectionKeys& keys) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (run.id == 0 && runs_.count(0) == 0) runs_[0] = NewRun();
  Run* const known = Find(run);
  if (!known) return;
  if (run.id == 0 && known->open.empty()) {
    const auto now = std::chrono::steady_clock::now();
    if (now - known->last >= MachineFacts::SERVES_FOR) *known = NewRun();
  }
  SectionIn(*known, keys);
  known->open.push_back(keys);
}

void LedgerRecorder::SectionEnded(const RunInfo& run, const SectionKeys& keys, Duration taken) {
  const std::lock_guard<std::mutex> lock(mutex_);
  Run* const known = Find(run);
  if (!known) return;
  SectionIn(*known, keys).taken += taken;
  known->last = std::chrono::steady_clock::now();
  if (!known->open.empty()) known->open.pop_back();
}

void LedgerRecorder::RecordsCounted(const RunInfo& run, const RecordCounts& records) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (Run* const known = Find(run)) known->records = records;
}

void LedgerRecorder::ToolEnded(const RunInfo& run, const ToolRun& tool) {
  const std::lock_guard<std::mutex> lock(mutex_);
  Run* const known = Find(run);
  if (!known || known->open.empty()) return;
  Tool& kept = ToolIn(SectionIn(*known, known->open.back()), tool.command);
  ++kept.runs;
  kept.taken += tool.taken;
  if (tool.outcome < kept.outcome) return;
  kept.outcome = tool.outcome;
  kept.exitCode = tool.exitCode;
}

OrderedJson LedgerRecorder::ToJson(const Tool& tool) {
  return {{"command", tool.command},
          {"runs", tool.runs},
          {"milliseconds", Milliseconds(tool.taken)},
          {"outcome", OutcomeText(tool.outcome, tool.exitCode)}};
}

OrderedJson LedgerRecorder::ToJson(const Run& run) {
  OrderedJson sections = OrderedJson::array();
  for (const Section& section : run.sections) {
    OrderedJson tools = OrderedJson::array();
    for (const Tool& tool : section.tools) tools.push_back(ToJson(tool));
    sections.push_back(
        {{"keys", section.keys}, {"milliseconds", Milliseconds(section.taken)}, {"tools", tools}});
  }
  return {
      {"begun", TimeText(run.begun)},
      {"kind", run.kind},
      {"milliseconds", Milliseconds(run.before + (std::chrono::steady_clock::now() - run.start))},
      {"sections", sections},
      {"records", run.records}};
}

}  // namespace Norvik::Host
