#pragma once

#include <boost/filesystem/path.hpp>
#include <boost/optional.hpp>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

#include "common/action/IActionSystem.h"
#include "common/action/ModuleDependencies.h"
#include "common/database/AgentData.h"
#include "conformance/HostAdapter.h"
#include "conformance/Probe.h"
#include "platform/FileDescriptor.h"

namespace Norvik::Conformance {

/// The host does not keep the promise; the text says what it did.
struct Broken : std::runtime_error {
  using runtime_error::runtime_error;
};

/// The host does not offer what the promise is about.
struct NotOffered {};

/// The adapter cannot be used at all.
struct Unusable : std::runtime_error {
  using runtime_error::runtime_error;
};

/// Throws `Broken` unless it is kept.
void Expect(bool isKept, const std::string& reason);

/// Counts the runs of the actions that it makes. They own it, so that a late run does no harm. Any
/// thread may call.
class Runs : public std::enable_shared_from_this<Runs> {
 public:
  using Work = std::function<void()>;

  static std::shared_ptr<Runs> Make() { return std::make_shared<Runs>(); }
  /// An action that does the work, and then counts.
  Common::ModuleAction Action(Work work = {});
  int Count() const;
  /// When each run began.
  std::vector<std::chrono::system_clock::time_point> Times() const;

 private:
  mutable std::mutex mutex_;
  std::vector<std::chrono::system_clock::time_point> times_;
};

/// What must not change in the process while a module lives.
struct ProcessState {
  std::string codeSet;  ///< of LC_CTYPE
  std::string numeric;
  std::string dataFolder;
  std::string currentFolder;
  const void* logger = nullptr;

  static ProcessState Now();
  /// The first difference; empty without one.
  std::string DifferenceFrom(const ProcessState& former) const;
};

struct SubjectOptions {
  boost::filesystem::path adapter;
  boost::filesystem::path probe;
  boost::filesystem::path module;  ///< libNorvikKOB
  boost::filesystem::path dataFolder;
  /// How long a check waits for what must happen.
  std::chrono::seconds patience{30};
};

/// A host under check, and the module that it has loaded. At most one in a process.
class Subject {
 public:
  /// Loads the adapter. Throws `Unusable` if it cannot be loaded.
  explicit Subject(SubjectOptions options);
  ~Subject();
  Subject(const Subject&) = delete;
  Subject& operator=(const Subject&) = delete;

  // All pass on what the host throws. `Start` throws `Broken` if the host has made no module.
  void Start();
  void Stop();
  void Restart();

  /// Lets time pass.
  void Wait(std::chrono::milliseconds time);
  /// Waits until the condition holds, for the patience at most; false if it never did.
  bool Within(const std::function<bool()>& condition);
  /// "within 30 seconds", for reasons.
  std::string WithinText() const;

  // The services; `Broken` if one no longer exists.
  std::shared_ptr<Common::IActionSystem> Actions() const;
  std::shared_ptr<Common::IIdentificationSystem> Identification() const;
  std::shared_ptr<Common::ICommunicationSystem> Communications() const;
  std::shared_ptr<Common::IDataBase> DataBase() const;
  Common::AgentData Data() const { return {given_.dataBase, "DATA"}; }
  /// The names of the services that exist, or that do not.
  std::vector<std::string> ServicesThat(bool exist) const;
  /// Also after the end of the host.
  const Common::ModuleDependencies& Given() const { return given_; }
  const std::weak_ptr<Common::ModuleDependencies>& Dependencies() const { return dependencies_; }
  const SubjectOptions& Options() const { return options_; }
  /// The number of modules that the host has made and not deleted.
  int Modules() const { return modules_; }
  /// Of the process, when the module was made.
  const ProcessState& AtMake() const { return atMake_; }
  /// The mode of the data folder when the module was made; empty: the folder was missing.
  const boost::optional<unsigned int>& FolderMode() const { return folderMode_; }
  /// From now on the server refuses connections.
  void CloseServer() { server_ = Platform::FileDescriptor(); }

  // Called while the module is made and deleted. What they throw is thrown by `Start` and `Stop`.
  std::function<void()> duringMake;
  std::function<void()> duringDelete;
  /// Makes the actions of the module by their code; without it they have no handler.
  std::function<Common::ModuleAction(unsigned int)> makeAction;

 private:
  class Module;

  static Common::IModule* MakeProbe(const std::weak_ptr<Common::ModuleDependencies>& dependencies);
  void Note(const std::function<void()>& work);
  void RethrowNoted();

  const SubjectOptions options_;
  Platform::FileDescriptor server_;
  HostStart start_;
  std::unique_ptr<HostAdapter> adapter_;
  std::weak_ptr<Common::ModuleDependencies> dependencies_;
  Common::ModuleDependencies given_;
  ProcessState atMake_;
  boost::optional<unsigned int> folderMode_;
  int modules_ = 0;
  std::exception_ptr noted_;
};

/// Looks up a function of a library, which stays loaded. Throws `Unusable`.
void* FunctionOf(const boost::filesystem::path& library, const char* name);

}  // namespace Norvik::Conformance
