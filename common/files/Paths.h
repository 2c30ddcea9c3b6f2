#pragma once

#include <boost/filesystem/path.hpp>

#include "common/Api.h"

namespace Norvik::Common {

/// Folders of the agent, all below one data folder.
class NORVIK_COMMON_API Paths {
 public:
  enum Type : int {
    DATA = 1,                ///< the data folder itself
    WORK = 2,                ///< files are built here
    PREVIOUS_INVENTORY = 3,  ///< last full document, for the incremental comparison
    OUTBOX = 4,              ///< the host sends files from here
  };

  /// @param create makes the folder (mode 0700) if it is missing; raises
  ///        `boost::filesystem::filesystem_error` if that fails
  Paths(const Type& type, bool create);

  boost::filesystem::path AppData() const { return path_; }

  /// Sets the data folder of this process. Call it before any thread uses `Paths`.
  static void SetDataFolder(const boost::filesystem::path& folder);

 private:
  boost::filesystem::path path_;
};

}  // namespace Norvik::Common
