#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "common/progress/ProgressListener.h"
#include "host/OutputText.h"
#include "host/assembly/ListeningLogger.h"

namespace Norvik::Host {

/// Reports what the actions of an errand do to that errand, as events: JSON objects that
/// `ProgressReader` turns into the same calls of another listener. A machine inventory also reports
/// the sections that were gathered before it and serve it. Files of a document are counted here,
/// while it exists.
class ProgressEvents : public Common::IProgressListener {
 public:
  void RunBegun(const Common::RunInfo& run) override;
  void RunEnded(const Common::RunInfo& run) override;
  void KindDecided(const Common::RunInfo& run, bool incremental) override;
  void TotalInstead(const Common::RunInfo& run, const std::string& reason) override;
  void RequestRefused(Common::RunKind kind, const std::string& reason) override;
  void NothingToSend(const Common::RunInfo& run) override;
  void SectionBegun(const Common::RunInfo& run, const Common::SectionKeys& keys) override;
  void SectionEnded(const Common::RunInfo& run, const Common::SectionKeys& keys,
                    Duration taken) override;
  void PhaseBegun(const Common::RunInfo& run, Common::RudStatus phase) override;
  void PhaseEnded(const Common::RunInfo& run, Common::RudStatus phase, Duration taken) override;
  void DocumentStepDone(const Common::RunInfo& run, const Common::DocumentStep& step) override;
  void TaskReported(const Common::TaskResponseInfo& status) override;

 private:
  using Times = std::map<Common::SectionKeys, Duration>;

  std::mutex mutex_;
  Times gathered_;                          ///< outside of a run, the last time
  std::map<std::uint64_t, Times> earlier_;  ///< by run: what it has not retrieved itself so far
};

/// Of the folders and files that a run has seen so far.
OrderedJson SeenEvent(const Common::RunInfo& run);

/// Of a line of the log that an action has caused.
OrderedJson LoggedEvent(const LogLine& line);

/// Calls listeners for events. For one thread.
class ProgressReader {
 public:
  ProgressReader(std::shared_ptr<Common::IProgressListener> listener, LogListener logListener)
      : listener_(std::move(listener)), logListener_(std::move(logListener)) {}

  /// Sets the number of the action that the event belongs to as that of this thread during the
  /// call. Ignores an event that it does not know; throws a subclass of `std::exception` for a
  /// malformed one.
  void Read(const OrderedJson& event);

 private:
  Common::RunInfo RunOf(const OrderedJson& event);

  const std::shared_ptr<Common::IProgressListener> listener_;
  const LogListener logListener_;
  std::map<std::uint64_t, std::shared_ptr<Common::SeenCounts>> seen_;
};

}  // namespace Norvik::Host
