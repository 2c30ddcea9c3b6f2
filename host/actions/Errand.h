#pragma once

#include <cstdint>
#include <memory>
#include <nlohmann/json_fwd.hpp>

#include "common/progress/ProgressListener.h"
#include "host/assembly/ListeningLogger.h"

namespace Norvik::Host {

/// What somebody waits for: an action, those that it starts without a delay, those that these
/// start, and so on. Each of them holds the errand until its end, so the last one ends it.
class Errand {
 public:
  Errand() = default;
  Errand(const Errand&) = delete;
  Errand& operator=(const Errand&) = delete;
  virtual ~Errand();

  /// One of its actions has reported progress, or logged a line. Called on the thread of that
  /// action, which waits for the return. Must not throw, nor log.
  virtual void Happened(const nlohmann::ordered_json& event) = 0;
  virtual void Logged(const LogLine& line) = 0;
  /// A run whose counts grow without an event.
  virtual void Counts(const Common::RunInfo& run) = 0;

  /// The errand of this thread's action; null if it has none.
  static std::shared_ptr<Errand> Current();
  /// The number of this thread's action in the process; 0 in the first action of an errand, and
  /// where no action thread runs an action.
  static std::uint64_t CurrentAction();
};

/// This thread runs an action until the end of the scope. Scopes may nest; the inner one counts.
class ErrandScope {
 public:
  /// An action with a number of its own. What it starts belongs to the errand, too.
  /// @param errand null: none
  explicit ErrandScope(std::shared_ptr<Errand> errand);
  /// An action of this number.
  ErrandScope(std::shared_ptr<Errand> errand, std::uint64_t action);
  ErrandScope(const ErrandScope&) = delete;
  ErrandScope& operator=(const ErrandScope&) = delete;
  ~ErrandScope();

 private:
  std::shared_ptr<Errand> outerErrand_;
  const std::uint64_t outerAction_;
};

}  // namespace Norvik::Host
