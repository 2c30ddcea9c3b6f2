#include "host/run/ServiceProgress.h"

#include <boost/algorithm/string/join.hpp>
#include <boost/format.hpp>

#include "common/log/Logger.h"

namespace Norvik::Host {

using namespace Common;

namespace {

std::string NameOfAll(const SectionKeys& keys) { return boost::algorithm::join(keys, ", "); }

}  // namespace

OrderedJson ServiceProgress::ToJson() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  OrderedJson list = OrderedJson::array();
  for (const auto& [id, run] : runs_) list.push_back(ToJson(run));
  return list;
}

OrderedJson ServiceProgress::ToJson(const Run& run) {
  const bool ofFiles = run.info.kind == RunKind::FileInventory;
  OrderedJson json = {{"inventory", ofFiles ? "files" : "machine"},
                      {"kind", run.kind},
                      {"since", TimeText(run.since)},
                      {"at", run.at}};
  if (ofFiles) {
    json["folders"] = run.info.seen->folders.load();
    json["files"] = run.info.seen->files.load();
  } else {
    json["sections"] = run.sections;
  }
  return json;
}

template <class Change>
void ServiceProgress::With(const RunInfo& run, Change change) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = runs_.find(run.id);
  if (found != runs_.end()) change(found->second);
}

void ServiceProgress::RunBegun(const RunInfo& run) {
  const std::lock_guard<std::mutex> lock(mutex_);
  Run& begun = runs_[run.id];
  begun.info = run;
  begun.since = std::chrono::system_clock::now();
}

void ServiceProgress::RunEnded(const RunInfo& run) {
  const std::lock_guard<std::mutex> lock(mutex_);
  runs_.erase(run.id);
}

void ServiceProgress::KindDecided(const RunInfo& run, bool incremental) {
  With(run, [&](Run& known) { known.kind = incremental ? "incremental" : "total"; });
}

void ServiceProgress::TotalInstead(const RunInfo& run, const std::string& /*reason*/) {
  With(run, [](Run& known) { known.kind = "total"; });
}

void ServiceProgress::SectionBegun(const RunInfo& run, const SectionKeys& keys) {
  With(run, [&](Run& known) { known.at = NameOfAll(keys); });
}

void ServiceProgress::SectionEnded(const RunInfo& run, const SectionKeys& keys, Duration taken) {
  With(run, [](Run& known) {
    known.at.clear();
    ++known.sections;
  });
  const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(taken).count();
  NORVIK_DETAIL(boost::format("Section %1% took %2% milliseconds") % NameOfAll(keys) %
                std::to_string(milliseconds));
}

void ServiceProgress::PhaseBegun(const RunInfo& run, RudStatus phase) {
  With(run, [&](Run& known) { known.at = Common::NameOf(phase); });
}

void ServiceProgress::PhaseEnded(const RunInfo& run, RudStatus /*phase*/, Duration /*taken*/) {
  With(run, [](Run& known) { known.at.clear(); });
}

}  // namespace Norvik::Host
