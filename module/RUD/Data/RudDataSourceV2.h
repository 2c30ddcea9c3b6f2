#pragma once

namespace Norvik::KOB::V2 {

/// How far a file inventory has come.
enum RudStatus : int {
  RudStatusNone = 1,      ///< no run has been recorded
  RudStatusFinished = 2,  ///< the last run ended, well or badly
  RudStatusScanning = 3,  ///< the folders are walked
  RudStatusSaving = 4,    ///< results are written to the store
  RudStatusPrinting = 5,  ///< the document is made
};

/// Which of a run's times a transition records.
enum TimePointStatus : int { DateBegin = 0, DateModified = 1, DateEnd = 2 };

/// Store of the file inventory in the agent database. Raises what the database raises.
class RudDataSource {
 public:
  /// State of the current or last run.
  static RudStatus GetStatus();
  /// Records a transition and the one time that it names (seconds since the epoch); the other times
  /// keep their values.
  static bool SetStatus(RudStatus status, long time, TimePointStatus point);
};

}  // namespace Norvik::KOB::V2
