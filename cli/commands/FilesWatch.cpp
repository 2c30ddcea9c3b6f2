#include "cli/commands/FilesWatch.h"

#include <boost/algorithm/string/predicate.hpp>
#include <utility>

namespace Norvik::Cli {

using namespace Host;

namespace {

using Common::Logger;
using std::chrono::steady_clock;

constexpr char STARTED[] = "RUD Inventory Started: ";
constexpr char NO_BASE[] = "RUD2_LAST_INVENTORY table is empty";
constexpr char NOTHING_TO_SEND[] = "RUD File empty. With nothing to send.";

struct Step {
  const char* text;  ///< how the line begins
  FilesPhase phase;  ///< that begins with it
};

// An incremental inventory saves its scan once more behind its document.
constexpr Step STEPS[] = {{"Init scan of ", FilesPhase::Scanning},
                          {"Scan finished in ", FilesPhase::Saving},
                          {"RUDHarvester exception: ", FilesPhase::Saving},
                          {"Generating JSON RUD ", FilesPhase::Printing},
                          {"RUD Generating JSON finish ", FilesPhase::Saving},
                          {"RUD incremental empty.", FilesPhase::Saving},
                          {"RUD Inventory Finished", FilesPhase::Ended}};

}  // namespace

const char* NameOf(FilesPhase phase) {
  static constexpr const char* NAMES[] = {"scanning", "saving", "printing", "ended"};
  return NAMES[static_cast<int>(phase)];
}

FilesWatch::FilesWatch(PhaseStarts onPhase) : onPhase_(std::move(onPhase)) {}

void FilesWatch::See(const LogLine& line) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (line.level == Logger::LEVEL_ERROR) problems_.push_back(line.text);
  if (line.level == Logger::LEVEL_WARNING) lastWarning_ = line.text;
  if (boost::starts_with(line.text, STARTED)) {
    kind_ = boost::ends_with(line.text, "1") ? "incremental" : "total";
  }
  hadNoBase_ = hadNoBase_ || boost::starts_with(line.text, NO_BASE);
  nothingToSend_ = nothingToSend_ || line.text == NOTHING_TO_SEND;
  for (const Step& step : STEPS) {
    if (boost::starts_with(line.text, step.text)) Enter(step.phase);
  }
}

/// With `mutex_` held.
void FilesWatch::Enter(FilesPhase phase) {
  const auto now = steady_clock::now();
  if (phase_ != FilesPhase::Ended) {
    seconds_[phase_] += std::chrono::duration<double>(now - since_).count();
  }
  since_ = now;
  if (std::exchange(phase_, phase) != phase && onPhase_) onPhase_(phase);
}

std::string FilesWatch::Kind() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return kind_;
}

bool FilesWatch::NothingToSend() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return nothingToSend_;
}

bool FilesWatch::HadNoBase() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return hadNoBase_;
}

std::map<FilesPhase, double> FilesWatch::Seconds() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return seconds_;
}

std::vector<std::string> FilesWatch::Problems() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return problems_;
}

std::string FilesWatch::LastWarning() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return lastWarning_;
}

}  // namespace Norvik::Cli
