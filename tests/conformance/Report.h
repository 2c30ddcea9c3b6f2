#pragma once

#include <boost/filesystem/path.hpp>
#include <functional>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "conformance/Promises.h"

namespace Norvik::Conformance {

inline constexpr char KEPT[] = "kept";
inline constexpr char BROKEN[] = "broken";
inline constexpr char NOT_OFFERED[] = "not offered";
inline constexpr char UNUSABLE[] = "unusable";

/// How a check ended: one of these words, and for `BROKEN` and `UNUSABLE` the reason.
struct Outcome {
  std::string result;
  std::string reason;
};

/// Runs one check in this process and writes its outcome into the data folder of `files`, where
/// `CheckApart` reads it; the host gets a folder below. Then ends the host. Throws what that
/// throws. Returns the exit code of the process.
int CheckHere(const SubjectOptions& files, const Promise& promise);

struct RunOptions {
  SubjectOptions files;  ///< the data folder is the one that holds a folder for each check
  std::chrono::seconds limit{120};  ///< of one check
  unsigned int jobs = 4;            ///< checks at a time
};

/// Runs each check in a process of its own, and calls `done` for each in their order, on this
/// thread. A process that crashes or takes too long makes its promise broken.
void CheckApart(const RunOptions& options, const std::vector<Promise>& promises,
                const std::function<void(const Promise&, const Outcome&)>& done);

void WriteText(std::ostream& output, const Promise& promise, const Outcome& outcome);
nlohmann::ordered_json ToJson(const Promise& promise, const Outcome& outcome);

}  // namespace Norvik::Conformance
