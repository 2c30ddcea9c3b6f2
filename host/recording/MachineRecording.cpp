#include "host/recording/MachineRecording.h"

#include <fcntl.h>
#include <sys/file.h>

#include <algorithm>
#include <boost/filesystem/fstream.hpp>
#include <boost/filesystem/operations.hpp>
#include <cerrno>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>

#include "common/commands/CommandRunner.h"
#include "common/text/Text.h"
#include "host/HostError.h"
#include "host/assembly/ModuleActionCodes.h"
#include "host/recording/MachineFiles.h"
#include "host/recording/Questions.h"
#include "host/recording/Redaction.h"
#include "host/recording/RemovalOnDeath.h"
#include "host/recording/SystemFacts.h"
#include "host/recording/ToolRecorder.h"
#include "platform/FileDescriptor.h"
#include "platform/SystemChanges.h"

namespace Norvik::Host {

namespace {

namespace fs = boost::filesystem;

/// The folder beside the wanted one in which the recording is made. Removed at the end.
class PartialFolder {
 public:
  explicit PartialFolder(const fs::path& folder) : path_(folder.string() + ".partial") {
    if (fs::exists(fs::symlink_status(folder))) {
      throw UsageError(folder.string() + " exists already");
    }
    if (fs::is_directory(Recording()) && fs::is_directory(Work())) {
      if (!Lock()) throw UsageError(folder.string() + " is being recorded by another process");
      // Of a machine that was switched off meanwhile.
      fs::remove_all(path_);
    }
    if (!fs::create_directory(path_)) throw UsageError(path_.string() + " exists already");
    removal_.emplace(path_);
    Lock();
    fs::permissions(path_, fs::owner_all);
    fs::create_directory(Recording());
    fs::create_directory(Work());
  }
  PartialFolder(const PartialFolder&) = delete;
  PartialFolder& operator=(const PartialFolder&) = delete;
  ~PartialFolder() {
    boost::system::error_code ignored;
    fs::remove_all(path_, ignored);
  }

  fs::path Recording() const { return path_ / "recording"; }
  fs::path Work() const { return path_ / "work"; }

 private:
  bool Lock() {
    lock_ = Platform::FileDescriptor(::open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return ::flock(lock_.Get(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
  }

  const fs::path path_;
  Platform::FileDescriptor lock_;
  std::optional<RemovalOnDeath> removal_;
};

/// A collector writes a file into the working folder.
class WorkingFolder {
 public:
  explicit WorkingFolder(const fs::path& folder) : before_(fs::current_path()) {
    fs::current_path(folder);
  }
  WorkingFolder(const WorkingFolder&) = delete;
  WorkingFolder& operator=(const WorkingFolder&) = delete;
  ~WorkingFolder() {
    boost::system::error_code ignored;
    fs::current_path(before_, ignored);
  }

 private:
  const fs::path before_;
};

class ToolScope {
 public:
  explicit ToolScope(std::shared_ptr<ToolRecorder> recorder)
      : before_(Platform::GetSystemChanges()) {
    Platform::SetSystemChanges(std::move(recorder));
  }
  ToolScope(const ToolScope&) = delete;
  ToolScope& operator=(const ToolScope&) = delete;
  ~ToolScope() { Platform::SetSystemChanges(before_); }

 private:
  const std::shared_ptr<Platform::SystemChanges> before_;
};

/// Returns the document, which is empty if the inventory failed: `failures` then has why, and is
/// empty otherwise.
std::string TakeInventory(const RecordingOptions& options, const fs::path& dataFolder,
                          std::vector<std::string>& failures) {
  AgentOptions agent;
  agent.dataFolder = dataFolder;
  agent.moduleFile = fs::absolute(options.moduleFile);
  agent.logLevel = options.logLevel;
  std::mutex mutex;
  agent.logListener = [&](const LogLine& line) {
    if (line.level != Common::Logger::LEVEL_ERROR) return;
    const std::lock_guard<std::mutex> lock(mutex);
    failures.push_back("the inventory failed: " + Common::OnOneLine(line.text));
  };
  {
    const WorkingFolder working(dataFolder);
    AgentHost host(agent);
    // The recorder ends a tool that hangs, and records that.
    Common::CommandRunner::SetQueryLimit(std::chrono::seconds::zero());
    try {
      host.Run(ACTION_TOTAL_INVENTORY, {});
    } catch (const std::exception&) {
      // The host has logged it.
    }
  }
  if (!fs::exists(dataFolder / "previous")) return {};
  for (const auto& entry : fs::directory_iterator(dataFolder / "previous")) {
    failures.clear();
    fs::ifstream stream(entry.path(), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
  return {};
}

void WriteFacts(const std::map<std::string, std::string>& facts, const fs::path& recording) {
  for (const auto& [name, content] : facts) {
    fs::ofstream stream(recording / name, std::ios::binary);
    if (!stream.write(content.data(), static_cast<std::streamsize>(content.size())).flush()) {
      throw std::runtime_error("cannot write " + (recording / name).string());
    }
  }
}

std::size_t CallsIn(const fs::path& recording) {
  fs::ifstream answers(recording / "answers.txt");
  return static_cast<std::size_t>(
      std::count(std::istreambuf_iterator<char>(answers), std::istreambuf_iterator<char>(), '\n'));
}

std::size_t FilesIn(const fs::path& root) {
  if (!fs::exists(root)) return 0;
  return static_cast<std::size_t>(
      std::count_if(fs::recursive_directory_iterator(root), fs::recursive_directory_iterator(),
                    [](const auto& entry) { return !fs::is_directory(entry.symlink_status()); }));
}

}  // namespace

RecordingResult RecordMachine(const RecordingOptions& options) {
  const fs::path folder = fs::absolute(options.folder);
  const PartialFolder partial(folder);
  const fs::path recording = partial.Recording();
  const fs::path data = partial.Work() / "agent";
  fs::create_directory(data);
  RecordingResult result;
  std::string document;
  {
    const auto tools = std::make_shared<ToolRecorder>(recording, partial.Work(), options.toolLimit);
    Questions questions;
    {
      const ToolScope scope(tools);
      document = TakeInventory(options, data, result.warnings);
    }
    questions.Stop();
    for (auto& failure : CopyMachineFiles(questions.Files(), recording / "root")) {
      result.warnings.push_back(std::move(failure));
    }
    WriteFacts(SystemFacts(questions), recording);
    for (const auto& program : tools->UnrecordedPrograms()) {
      result.warnings.push_back(program + " is called by its path, so it is not recorded");
    }
    for (const auto& call : tools->UnfinishedCalls()) {
      result.warnings.push_back(call + " did not end within " +
                                std::to_string(options.toolLimit.count()) +
                                " s; it is recorded as failed");
    }
  }
  result.calls = CallsIn(recording);
  result.files = FilesIn(recording / "root");
  if (options.redact) result.replacements = RedactRecording(recording, document);
  fs::rename(recording, folder);
  return result;
}

}  // namespace Norvik::Host
