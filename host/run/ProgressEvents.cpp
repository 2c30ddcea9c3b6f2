#include "host/run/ProgressEvents.h"

#include <functional>
#include <string>
#include <utility>

#include "host/actions/Errand.h"

namespace Norvik::Host {

using namespace Common;

namespace {

using Duration = IProgressListener::Duration;

constexpr std::size_t LONGEST_LINE = 4096;

/// Reports an event of this thread's action to its errand, if it has one.
void Report(const char* name, OrderedJson event) {
  const auto errand = Errand::Current();
  if (!errand) return;
  event["event"] = name;
  event["action"] = Errand::CurrentAction();
  errand->Happened(event);
}

OrderedJson Of(const RunInfo& run) {
  return {{"run", run.id}, {"kind", static_cast<int>(run.kind)}};
}

OrderedJson Of(const RunInfo& run, const char* key, OrderedJson value) {
  OrderedJson event = Of(run);
  event[key] = std::move(value);
  return event;
}

OrderedJson Of(const RunInfo& run, const char* key, OrderedJson value, Duration taken) {
  OrderedJson event = Of(run, key, std::move(value));
  event["taken"] = std::chrono::duration_cast<std::chrono::nanoseconds>(taken).count();
  return event;
}

/// What the run has seen so far, if it counts.
OrderedJson WithCounts(const RunInfo& run, OrderedJson event) {
  if (!run.seen) return event;
  event["folders"] = run.seen->folders.load();
  event["files"] = run.seen->files.load();
  return event;
}

Duration TakenIn(const OrderedJson& event) {
  return std::chrono::duration_cast<Duration>(
      std::chrono::nanoseconds(event.at("taken").get<std::int64_t>()));
}

OrderedJson ToJson(const FilesCounts& counts) {
  return {counts.total, counts.added, counts.modified, counts.removed};
}

OrderedJson ToJson(const DocumentStep& step) {
  OrderedJson json = {{"step", static_cast<int>(step.kind)},
                      {"done", step.done},
                      {"source", step.source.string()},
                      {"target", step.target.string()},
                      {"bytes", step.bytes}};
  if (step.incremental) json["incremental"] = *step.incremental;
  if (step.files) json["files"] = ToJson(*step.files);
  return json;
}

DocumentStep StepOf(const OrderedJson& json) {
  DocumentStep step{static_cast<DocumentStep::Kind>(json.at("step").get<int>()),
                    json.at("done").get<bool>(),
                    json.at("source").get<std::string>(),
                    json.at("target").get<std::string>(),
                    {},
                    json.at("bytes").get<std::uintmax_t>()};
  if (json.contains("incremental")) step.incremental = json["incremental"].get<bool>();
  if (!json.contains("files")) return step;
  const OrderedJson& counts = json["files"];
  step.files = FilesCounts{counts.at(0), counts.at(1), counts.at(2), counts.at(3)};
  return step;
}

OrderedJson ToJson(const TaskResponseInfo& status) {
  return {{"status", static_cast<unsigned int>(status.status)},
          {"message", status.message},
          {"task", status.taskName},
          {"created", status.taskCreationDate},
          {"stamp", status.taskTimeStamp},
          {"request", status.requestId}};
}

TaskResponseInfo StatusOf(const OrderedJson& json) {
  return {static_cast<TaskResponseInfo::ResponseStatusTypes>(json.at("status").get<unsigned int>()),
          json.at("message"),
          json.at("task"),
          json.at("created"),
          json.at("stamp"),
          json.at("request")};
}

}  // namespace

void ProgressEvents::RunBegun(const RunInfo& run) {
  const auto errand = Errand::Current();
  if (!errand) return;
  Report("run begun", Of(run));
  errand->Counts(run);
  if (run.kind != RunKind::MachineInventory) return;
  const std::lock_guard<std::mutex> lock(mutex_);
  earlier_[run.id] = gathered_;
  for (const auto& [keys, taken] : gathered_) Report("section begun", Of({}, "keys", keys));
}

void ProgressEvents::RunEnded(const RunInfo& run) {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    for (const auto& [keys, taken] : earlier_[run.id]) {
      Report("section ended", Of({}, "keys", keys, taken));
    }
    earlier_.erase(run.id);
  }
  Report("run ended", Of(run));
}

void ProgressEvents::KindDecided(const RunInfo& run, bool incremental) {
  Report("kind", Of(run, "incremental", incremental));
}

void ProgressEvents::TotalInstead(const RunInfo& run, const std::string& reason) {
  Report("total instead", Of(run, "reason", reason));
}

void ProgressEvents::RequestRefused(RunKind kind, const std::string& reason) {
  Report("refused", Of({0, kind, nullptr}, "reason", reason));
}

void ProgressEvents::NothingToSend(const RunInfo& run) { Report("nothing", Of(run)); }

void ProgressEvents::SectionBegun(const RunInfo& run, const SectionKeys& keys) {
  Report("section begun", Of(run, "keys", keys));
}

void ProgressEvents::SectionEnded(const RunInfo& run, const SectionKeys& keys, Duration taken) {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (run.id == 0) gathered_[keys] = taken;
    const auto ofRun = earlier_.find(run.id);
    if (ofRun != earlier_.end()) ofRun->second.erase(keys);
  }
  Report("section ended", Of(run, "keys", keys, taken));
}

void ProgressEvents::PhaseBegun(const RunInfo& run, RudStatus phase) {
  Report("phase begun", WithCounts(run, Of(run, "phase", static_cast<int>(phase))));
}

void ProgressEvents::PhaseEnded(const RunInfo& run, RudStatus phase, Duration taken) {
  Report("phase ended", WithCounts(run, Of(run, "phase", static_cast<int>(phase), taken)));
}

void ProgressEvents::DocumentStepDone(const RunInfo& run, const DocumentStep& step) {
  if (!Errand::Current()) return;
  DocumentStep counted = step;
  // The next steps remove the document.
  if (run.kind == RunKind::FileInventory && step.kind == DocumentStep::WRITE) {
    counted.files = CountFiles(step.target);
  }
  Report("step", Of(run, "document", ToJson(counted)));
}

void ProgressEvents::TaskReported(const TaskResponseInfo& status) {
  Report("status", {{"of", ToJson(status)}});
}

OrderedJson SeenEvent(const RunInfo& run) {
  OrderedJson event = WithCounts(run, Of(run));
  event["event"] = "seen";
  return event;
}

OrderedJson LoggedEvent(const LogLine& line) {
  return {{"event", "logged"},
          {"level", static_cast<int>(line.level)},
          {"text", line.text.substr(0, LONGEST_LINE)}};
}

/// Every event but those of statuses has the number and the kind of a run.
RunInfo ProgressReader::RunOf(const OrderedJson& event) {
  const auto id = event.value("run", std::uint64_t{0});
  const auto kind = static_cast<RunKind>(event.value("kind", 0));
  if (id == 0) return {0, kind, nullptr};
  auto& seen = seen_[id];
  if (!seen) seen = std::make_shared<SeenCounts>();
  if (event.contains("folders")) {
    seen->folders = event["folders"].get<std::uint64_t>();
    seen->files = event.at("files").get<std::uint64_t>();
  }
  return {id, kind, seen};
}

void ProgressReader::Read(const OrderedJson& event) {
  using Call = void (*)(IProgressListener&, const RunInfo&, const OrderedJson&);
  using Listener = IProgressListener;
  using Run = const RunInfo&;
  using Event = const OrderedJson&;
  static const auto phaseOf = [](Event e) {
    return static_cast<RudStatus>(e.at("phase").get<int>());
  };
  static const std::map<std::string, Call> calls = {
      {"run begun", [](Listener& l, Run r, Event) { l.RunBegun(r); }},
      {"run ended", [](Listener& l, Run r, Event) { l.RunEnded(r); }},
      {"kind", [](Listener& l, Run r, Event e) { l.KindDecided(r, e.at("incremental")); }},
      {"total instead", [](Listener& l, Run r, Event e) { l.TotalInstead(r, e.at("reason")); }},
      {"refused", [](Listener& l, Run r, Event e) { l.RequestRefused(r.kind, e.at("reason")); }},
      {"nothing", [](Listener& l, Run r, Event) { l.NothingToSend(r); }},
      {"section begun", [](Listener& l, Run r, Event e) { l.SectionBegun(r, e.at("keys")); }},
      {"section ended",
       [](Listener& l, Run r, Event e) { l.SectionEnded(r, e.at("keys"), TakenIn(e)); }},
      {"phase begun", [](Listener& l, Run r, Event e) { l.PhaseBegun(r, phaseOf(e)); }},
      {"phase ended", [](Listener& l, Run r, Event e) { l.PhaseEnded(r, phaseOf(e), TakenIn(e)); }},
      {"step",
       [](Listener& l, Run r, Event e) { l.DocumentStepDone(r, StepOf(e.at("document"))); }},
      {"status", [](Listener& l, Run, Event e) { l.TaskReported(StatusOf(e.at("of"))); }}};
  if (event.value("event", "") == "logged") {
    const std::string text = event.at("text");
    return logListener_({static_cast<Logger::Level>(event.at("level").get<int>()), text});
  }
  const RunInfo run = RunOf(event);
  const auto found = calls.find(event.value("event", ""));
  if (found == calls.end()) return;
  const ErrandScope scope(nullptr, event.value("action", std::uint64_t{0}));
  found->second(*listener_, run, event);
}

}  // namespace Norvik::Host
