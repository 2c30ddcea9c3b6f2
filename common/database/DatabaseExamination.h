#pragma once

#include <boost/filesystem/path.hpp>
#include <chrono>
#include <map>
#include <string>

#include "common/Api.h"

namespace Norvik::Common {

/// What the agent database of a folder looks like from outside.
struct DatabaseExamination {
  enum class State {
    MISSING,
    UNREADABLE,  ///< whether it is sound cannot be told
    DAMAGED,
    UNFINISHED,  ///< not all of it could be read in time; nothing was wrong so far
    SOUND,
  };

  State state = State::MISSING;
  std::string problem;                      ///< of all states but `MISSING` and `SOUND`
  int schemaVersion = 0;                    ///< -1: unknown
  int newestVersion = 0;                    ///< that this program knows
  std::map<std::string, std::string> data;  ///< rows of the "DATA" table, as far as it is readable
};

/// Reads the database of a data folder, whether an agent uses it or not. Changes and leaves
/// nothing. Not for an object that `AgentDatabase` has open in this process. Throws only
/// `std::bad_alloc`.
/// @param limit when the check of its content ends
NORVIK_COMMON_API DatabaseExamination ExamineDatabase(const boost::filesystem::path& folder,
                                                      std::chrono::milliseconds limit);

}  // namespace Norvik::Common
