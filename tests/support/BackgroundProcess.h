#pragma once

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include "support/Files.h"

extern char** environ;

namespace Norvik::Tests {

/// A program that runs during the test, with its output and errors in a file. The destructor kills
/// it.
class BackgroundProcess {
 public:
  BackgroundProcess(std::vector<std::string> words, const boost::filesystem::path& output)
      : output_(output) {
    std::vector<char*> arguments;
    for (auto& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, 1, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                       0600);
    ::posix_spawn_file_actions_adddup2(&actions, 1, 2);
    if (::posix_spawn(&id_, arguments[0], &actions, nullptr, arguments.data(), environ) != 0) {
      id_ = -1;
    }
    ::posix_spawn_file_actions_destroy(&actions);
  }
  BackgroundProcess(const BackgroundProcess&) = delete;
  BackgroundProcess& operator=(const BackgroundProcess&) = delete;
  ~BackgroundProcess() { End(SIGKILL); }

  pid_t Id() const { return id_; }
  std::string Output() const { return ContentOf(output_); }
  void Signal(int signal) const {
    if (id_ > 0) ::kill(id_, signal);
  }
  /// Waits for its end. Returns the exit code, 128 plus the signal that ended it, or -1 if it does
  /// not run.
  int Wait() {
    int status = 0;
    if (id_ <= 0 || ::waitpid(id_, &status, 0) != id_) return -1;
    id_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }
  int End(int signal) {
    Signal(signal);
    return Wait();
  }

 private:
  const boost::filesystem::path output_;
  pid_t id_ = -1;
};

}  // namespace Norvik::Tests
