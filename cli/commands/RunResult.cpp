#include "cli/commands/RunResult.h"

#include <algorithm>
#include <boost/filesystem/operations.hpp>

namespace Norvik::Cli {

using Common::DocumentStep;

boost::filesystem::path RunResult::File() const {
  const auto move = std::find_if(steps.rbegin(), steps.rend(), [](const DocumentStep& step) {
    return step.kind == DocumentStep::MOVE && step.done;
  });
  return move == steps.rend() ? boost::filesystem::path() : move->target;
}

std::uintmax_t RunResult::Bytes() const {
  boost::system::error_code absent;
  const std::uintmax_t size = boost::filesystem::file_size(File(), absent);
  return absent ? 0 : size;
}

bool RunResult::AllStepsDone() const {
  return std::all_of(steps.begin(), steps.end(),
                     [](const DocumentStep& step) { return step.done; });
}

}  // namespace Norvik::Cli
