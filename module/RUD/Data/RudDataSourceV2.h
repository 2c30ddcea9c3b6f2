#pragma once

#include "common/database/DataBase.h"
#include "common/inventory/RudStatus.h"
#include "module/RUD/Data/RudBufferV2.h"

namespace Norvik::KOB::V2 {

using Common::RudStatus;
using Common::RudStatusFinished;
using Common::RudStatusNone;
using Common::RudStatusPrinting;
using Common::RudStatusSaving;
using Common::RudStatusScanning;

/// Which of a run's times a transition records.
enum TimePointStatus : int { DateBegin = 0, DateModified = 1, DateEnd = 2 };

/// Store of the file inventory in the agent database: the state of the run, the files of the last
/// inventory (main tables) and those of a running incremental one ("_TEMP" tables). A failure of
/// the store throws nothing: it is logged as an error, and the result is `RudStatusNone`, false or
/// no rows.
class RudDataSource {
 public:
  using Rows = Common::V2::DataBaseRows;

  /// Columns of the rows that the readers return. A row comes from one set of tables; the order of
  /// the rows is not defined.
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
  /// Records a new state and one time, in seconds since the epoch; the other two times keep their
  /// values.
  static bool SetStatus(RudStatus status, long time, TimePointStatus point);

  /// Replaces the content of the main tables, or of the "_TEMP" ones if `incremental`. Apostrophes
  /// in the buffer's texts become blanks. True also if an insert failed: its table is then empty,
  /// as tables are after an interruption.
  static bool SaveBuffer(RudBuffer& buffer, const bool& incremental);

  /// Every file of the main tables.
  static Rows GetLastInventory();
  /// The same one by one, without keeping all in memory. False after a failure, which may occur
  /// after some rows were visited. Throws what the visitor throws.
  static bool VisitLastInventory(const Common::V2::RowVisitor& visit);
  // Differences of the "_TEMP" tables from the main ones: files are compared by their paths, and
  // have changed if their times differ. Removed files have the values of the main tables.
  static Rows getNewFiles();
  static Rows getRemoveFiles();
  static Rows getModifiedFiles();
};

}  // namespace Norvik::KOB::V2
