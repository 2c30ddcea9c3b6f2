#pragma once

#include <boost/filesystem/path.hpp>
#include <chrono>
#include <cstdint>
#include <string>
#include <thread>

namespace Norvik::Conformance {

/// What a host starts with.
struct HostStart {
  boost::filesystem::path dataFolder;  ///< missing before the first start
  /// The module to load, which stands for libNorvikKOB.
  boost::filesystem::path moduleFile;
  /// Of a management server that takes connections and never answers. A host that has no server
  /// ignores it.
  std::string serverAddress;
  std::uint16_t serverPort = 0;
};

/// A host, as `norvik-host-conformance` drives it. Each promise is checked in a process of its own,
/// with one adapter, which is started and stopped several times. All calls come from one thread.
class HostAdapter {
 public:
  virtual ~HostAdapter() = default;

  /// Steps 1 to 5 of docs/embedding.md: everything up to the module's object. Throws a
  /// `std::exception` if the host cannot start.
  virtual void Start(const HostStart& start) = 0;
  /// Steps 8 and 9: waits for the actions that run, and deletes everything that `Start` made. A
  /// later `Start` on the same data folder is a restart of the agent.
  virtual void Stop() = 0;
  /// Lets time pass while the host runs. A host whose actions need this thread runs them here.
  virtual void Wait(std::chrono::milliseconds time) { std::this_thread::sleep_for(time); }

 protected:
  HostAdapter() = default;
  HostAdapter(const HostAdapter&) = default;
  HostAdapter& operator=(const HostAdapter&) = default;
};

}  // namespace Norvik::Conformance

/// The one function that the adapter's library exports. The caller deletes the object.
extern "C" __attribute__((visibility("default"))) Norvik::Conformance::HostAdapter*
MakeNorvikHostAdapter();
