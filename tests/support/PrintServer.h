#pragma once

#include <boost/algorithm/string/replace.hpp>
#include <memory>

#include "common/commands/CommandRunner.h"
#include "support/BackgroundProcess.h"
#include "support/LocalClient.h"
#include "support/TemporaryFolder.h"

namespace Norvik::Tests {

/// A private print server, run by the account of the test. Its files and its socket lie in a
/// temporary folder. While it exists, the clients of this process use no other server.
class PrintServer {
 public:
  /// @param removalAllowed whether its queues can be removed
  explicit PrintServer(bool removalAllowed) {
    for (const char* name : {"root", "run", "cache", "spool", "tmp"}) {
      boost::filesystem::create_directory(folder_ / name);
    }
    Write("files.conf", "files.conf");
    Write("server.conf", removalAllowed ? "removal-allowed.conf" : "removal-denied.conf");
    ::setenv("CUPS_SERVER", (folder_ / "socket").c_str(), 1);
    process_ = std::make_unique<BackgroundProcess>(
        std::vector<std::string>{"/usr/sbin/cupsd", "-f", "-c", (folder_ / "server.conf").string(),
                                 "-s", (folder_ / "files.conf").string()},
        folder_ / "output");
  }
  ~PrintServer() {
    // Uses the shell, because a test may have replaced `kill` in its own program. The check keeps
    // it from signalling every process.
    if (process_->Id() > 0) {
      Common::CommandRunner::ExecCommand("kill " + std::to_string(process_->Id()));
      process_->Wait();
    }
    ::unsetenv("CUPS_SERVER");
  }

  /// Waits until the server responds. False if it does not in time.
  bool IsRunning() const {
    return Eventually([] {
      const std::string state = Common::CommandRunner::ExecCommand("LC_ALL=C lpstat -r");
      return state.find("is running") != std::string::npos;
    });
  }
  void AddQueue(const std::string& name) const {
    Common::CommandRunner::ExecCommand("/usr/sbin/lpadmin -p " + name + " -v file:/dev/null -E");
  }
  std::string Queues() const { return Common::CommandRunner::ExecCommand("lpstat -v"); }

 private:
  /// Writes a file of print-server/ with "$" replaced by the temporary folder.
  void Write(const std::string& name, const std::string& source) {
    const auto text = ContentOf(NORVIK_SOURCE_DIR "/tests/support/print-server/" + source);
    WriteFile(folder_ / name, boost::replace_all_copy(text, "$", folder_.Path().string()));
  }

  TemporaryFolder folder_;
  std::unique_ptr<BackgroundProcess> process_;
};

}  // namespace Norvik::Tests
