#include "host/recording/Questions.h"

namespace Norvik::Host {

using Platform::Asked;

Questions::Questions() {
  Platform::SetMachineObserver(
      [this](Asked asked, const std::string& name, const std::string& answer) {
        const std::lock_guard<std::mutex> lock(mutex_);
        answers_[asked][name] = answer;
      });
}

void Questions::Stop() { Platform::SetMachineObserver({}); }

std::map<std::string, bool> Questions::Files() const {
  std::map<std::string, bool> files;
  for (const auto& [path, answer] : AnswersTo(Asked::EXISTENCE)) files[path] = false;
  for (const auto& [path, answer] : AnswersTo(Asked::FILE)) files[path] = true;
  return files;
}

Questions::Answers Questions::AnswersTo(Asked asked) const {
  const auto found = answers_.find(asked);
  return found == answers_.end() ? Answers() : found->second;
}

}  // namespace Norvik::Host
