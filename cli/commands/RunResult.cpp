#include "cli/commands/RunResult.h"

#include <algorithm>

namespace Norvik::Cli {

using Common::DocumentStep;

namespace {

/// The last move to the outbox that worked.
DocumentStep MoveOf(const std::vector<DocumentStep>& steps) {
  const auto move = std::find_if(steps.rbegin(), steps.rend(), [](const DocumentStep& step) {
    return step.kind == DocumentStep::MOVE && step.done;
  });
  return move == steps.rend() ? DocumentStep{DocumentStep::MOVE, false, {}, {}, {}} : *move;
}

}  // namespace

boost::filesystem::path RunResult::File() const { return MoveOf(steps).target; }

std::uintmax_t RunResult::Bytes() const { return MoveOf(steps).bytes; }

bool RunResult::AllStepsDone() const {
  return std::all_of(steps.begin(), steps.end(),
                     [](const DocumentStep& step) { return step.done; });
}

}  // namespace Norvik::Cli
