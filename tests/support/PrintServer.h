#pragma once

#include <stdlib.h>

#include <boost/algorithm/string/replace.hpp>
#include <chrono>
#include <memory>
#include <string>
#include <thread>

#include "common/commands/CommandRunner.h"
#include "support/BackgroundProcess.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace Norvik::Tests {

/// A print server of the test's own, as whoever runs the test: all that it has lies in a temporary
/// folder, it listens on a socket there, and for as long as it lives the clients ask no other.
class PrintServer {
 public:
  /// @param removalAllowed whether its queues can be removed
  explicit PrintServer(bool removalAllowed) {
    for (const char* name : {"root", "run", "cache", "spool", "tmp"}) {
      boost::filesystem::create_directory(folder_ / name);
    }
    Write("files.conf",
          "ServerRoot $/root\nStateDir $/run\nCacheDir $/cache\nRequestRoot $/spool\n"
          "TempDir $/tmp\nAccessLog $/access\nErrorLog $/error\nPageLog $/page\nFileDevice Yes\n");
    const std::string removal = removalAllowed
                                    ? "    Order deny,allow\n"
                                    : "    AuthType Basic\n    Require user nobody-here\n";
    Write("server.conf",
          "Listen $/socket\nBrowsing No\nWebInterface No\nDefaultAuthType None\n"
          "<Location />\n  Order allow,deny\n  Allow all\n</Location>\n"
          "<Policy default>\n  <Limit CUPS-Delete-Printer>\n" +
              removal + "  </Limit>\n  <Limit All>\n    Order deny,allow\n  </Limit>\n</Policy>\n");
    ::setenv("CUPS_SERVER", (folder_ / "socket").c_str(), 1);
    process_ = std::make_unique<BackgroundProcess>(
        std::vector<std::string>{"/usr/sbin/cupsd", "-f", "-c", (folder_ / "server.conf").string(),
                                 "-s", (folder_ / "files.conf").string()},
        folder_ / "output");
  }
  PrintServer(const PrintServer&) = delete;
  PrintServer& operator=(const PrintServer&) = delete;
  ~PrintServer() {
    // In a shell: a test may have `kill` of its own program replaced. Without a number it would
    // reach everybody.
    if (process_->Id() > 0) {
      Common::CommandRunner::ExecCommand("kill " + std::to_string(process_->Id()));
      process_->Wait();
    }
    ::unsetenv("CUPS_SERVER");
  }

  /// Whether it answers; waits for that.
  bool IsRunning() const {
    for (int i = 0; i < 200; ++i) {
      const std::string state = Common::CommandRunner::ExecCommand("LC_ALL=C lpstat -r");
      if (state.find("is running") != std::string::npos) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return false;
  }
  void AddQueue(const std::string& name) const {
    Common::CommandRunner::ExecCommand("/usr/sbin/lpadmin -p " + name + " -v file:/dev/null -E");
  }
  std::string Queues() const { return Common::CommandRunner::ExecCommand("lpstat -v"); }

 private:
  void Write(const std::string& name, const std::string& text) {
    WriteFile(folder_ / name, boost::replace_all_copy(text, "$", folder_.Path().string()));
  }

  TemporaryFolder folder_;
  std::unique_ptr<BackgroundProcess> process_;
};

}  // namespace Norvik::Tests
