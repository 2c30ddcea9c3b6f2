#pragma once

#include <boost/filesystem/path.hpp>

#include "common/Api.h"

namespace Norvik::Common {

/// The folders of the agent, all below one data folder. Any thread may use them.
class NORVIK_COMMON_API Paths {
 public:
  enum Type : int {
    DATA = 1,                ///< the data folder itself
    WORK = 2,                ///< documents are built here
    PREVIOUS_INVENTORY = 3,  ///< the last full document, for the incremental comparison
    OUTBOX = 4,              ///< sealed files, which the host sends
  };

  /// @param create whether to create the folder (mode 0700) if it is missing; throws
  ///        `boost::filesystem::filesystem_error` if that fails
  Paths(const Type& type, bool create);

  /// The absolute path of the folder.
  boost::filesystem::path AppData() const { return path_; }

  /// Sets the data folder of this process; "/opt/local/norvik/data" without it. Call it before any
  /// thread uses `Paths`.
  static void SetDataFolder(const boost::filesystem::path& folder);

 private:
  boost::filesystem::path path_;
};

}  // namespace Norvik::Common
