#pragma once

#include "common/database/DataBase.h"
#include "module/RUD/Data/RudBufferV2.h"

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

/// Store of the file inventory in the agent database: the state of the run, the last full picture
/// of the disk (main tables) and the one of a running incremental inventory ("_TEMP" tables).
/// No failure of the store raises: it is logged as an error and answered by `RudStatusNone`, false
/// or no rows.
class RudDataSource {
 public:
  using Rows = Common::V2::DataBaseRows;

  /// Columns of the rows that the readers answer; each comes from one generation of tables, in no
  /// promised order.
  enum Column : unsigned int {
    FileState,         ///< int
    Path,              ///< string
    FileName,          ///< string
    Extension,         ///< string
    Size,              ///< long long
    LastModification,  ///< long long
    ProductName,       ///< string
    Version,           ///< string
    FileDescription,   ///< string
    Company,           ///< string
    IsExecutable,      ///< int
    FileVersion,       ///< string
  };

  /// State of the current or last run.
  static RudStatus GetStatus();
  /// Records a transition and the one time that it names (seconds since the epoch); the other times
  /// keep their values.
  static bool SetStatus(RudStatus status, long time, TimePointStatus point);

  /// Replaces the content of the main tables, or of the "_TEMP" ones. Apostrophes in the buffer's
  /// texts become blanks. True also if an insert failed: its table is then empty. An interruption
  /// leaves tables empty as well.
  static bool SaveBuffer(RudBuffer& buffer, const bool& incremental);

  /// Every file of the main tables.
  static Rows GetLastInventory();
  /// The same one by one, without holding them all. False after a failure, which may come when some
  /// were visited. Raises what the visitor raises.
  static bool VisitLastInventory(const Common::V2::RowVisitor& visit);
  // Differences of the "_TEMP" tables from the main ones: files by their path, changed ones by
  // their time. Removed files come with their old values.
  static Rows getNewFiles();
  static Rows getRemoveFiles();
  static Rows getModifiedFiles();
};

}  // namespace Norvik::KOB::V2
