#pragma once

#include <map>
#include <mutex>
#include <string>

#include "platform/MachineObserver.h"

namespace Norvik::Host {

/// Notes what the machine is asked, and what it answers, until `Stop`. One at a time.
class Questions {
 public:
  using Answers = std::map<std::string, std::string>;

  Questions();
  Questions(const Questions&) = delete;
  Questions& operator=(const Questions&) = delete;
  ~Questions() { Stop(); }

  void Stop();

  // After `Stop`.

  /// The absolute paths, each with whether it was opened, not only asked for.
  std::map<std::string, bool> Files() const;
  /// By name; empty if nothing of this kind was asked.
  Answers AnswersTo(Platform::Asked asked) const;

 private:
  std::mutex mutex_;
  std::map<Platform::Asked, Answers> answers_;
};

}  // namespace Norvik::Host
