#include "platform/Rehearsal.h"

#include <cerrno>
#include <cstring>
#include <mutex>
#include <set>
#include <stdexcept>
#include <utility>

#include "platform/RemovalLook.h"

namespace Norvik::Platform {

namespace {

/// The rehearsal of this process.
struct Current {
  std::mutex mutex;
  bool inForce = false;
  std::vector<RehearsedStep> steps;
  std::set<std::string> removed;  ///< places of what the rehearsal has removed
};

Current& TheCurrent() {
  static Current current;
  return current;
}

}  // namespace

Rehearsal::Rehearsal() {
  Current& current = TheCurrent();
  const std::lock_guard<std::mutex> lock(current.mutex);
  if (current.inForce) throw std::logic_error("a rehearsal is in force already");
  current.inForce = true;
  current.steps.clear();
  current.removed.clear();
}

Rehearsal::~Rehearsal() {
  Current& current = TheCurrent();
  const std::lock_guard<std::mutex> lock(current.mutex);
  current.inForce = false;
}

std::vector<RehearsedStep> Rehearsal::Steps() const {
  Current& current = TheCurrent();
  const std::lock_guard<std::mutex> lock(current.mutex);
  return current.steps;
}

bool IsRehearsed() {
  Current& current = TheCurrent();
  const std::lock_guard<std::mutex> lock(current.mutex);
  return current.inForce;
}

void NoteStep(RehearsedStep step) {
  const int error = errno;
  Current& current = TheCurrent();
  {
    const std::lock_guard<std::mutex> lock(current.mutex);
    if (current.inForce) current.steps.push_back(std::move(step));
  }
  errno = error;
}

bool RehearseRemoval(const std::string& path) {
  int problem = 0;
  {
    Current& current = TheCurrent();
    const std::lock_guard<std::mutex> lock(current.mutex);
    problem = RemovalProblem(path, current.removed);
    if (problem == 0) current.removed.insert(PlaceOf(path));
  }
  NoteStep({RehearsedStep::REMOVAL, path, "", problem == 0 ? "" : std::strerror(problem)});
  errno = problem;
  return problem == 0;
}

#ifdef __APPLE__
// Elsewhere platform/compat answers, as it answers those who send.
int RehearseAppleEvent(const std::string& text) {
  NoteStep({RehearsedStep::APPLE_EVENT, text, "", ""});
  return 0;
}
#endif

}  // namespace Norvik::Platform
