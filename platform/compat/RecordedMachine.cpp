#include "platform/RecordedMachine.h"

#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <mutex>
#include <stdexcept>
#include <system_error>

#include "platform/MachinePath.h"
#include "platform/compat/PropertyListReader.h"
#include "platform/compat/Recording.h"

namespace Norvik::Platform {

namespace {

namespace fs = std::filesystem;

struct Recording {
  std::mutex mutex;
  std::string folder;  ///< empty: none is in force
  std::shared_ptr<const Registry> registry;
};

Recording& Current() {
  static Recording recording;
  return recording;
}

std::string ExistingFolder(const std::string& text) {
  std::error_code error;
  const fs::path folder = fs::canonical(text, error);
  if (error || !fs::is_directory(folder, error)) {
    throw std::runtime_error("there is no folder " + text);
  }
  return folder.string();
}

/// Makes a folder of links to the system's filters. All other programs of the system would answer
/// for the real machine. Recorded tools may be scripts, which use them as well.
std::string MakeFilters() {
  static constexpr const char* NAMES[] = {
      "awk", "basename", "cat",   "chmod", "cp",    "cut",  "date", "dirname", "echo", "egrep",
      "env", "expr",     "false", "fgrep", "find",  "grep", "head", "ln",      "ls",   "mkdir",
      "mv",  "printf",   "pwd",   "rm",    "rmdir", "sed",  "sh",   "sleep",   "sort", "tail",
      "tee", "test",     "touch", "tr",    "true",  "uniq", "wc",   "xargs"};
  std::string folder = (fs::temp_directory_path() / "norvik-filters-XXXXXX").string();
  if (!::mkdtemp(folder.data())) {
    throw std::runtime_error("cannot make " + folder + ": " + std::strerror(errno));
  }
  for (const char* const name : NAMES) {
    for (const char* const place : {"/usr/bin/", "/bin/"}) {
      std::error_code exists;
      if (fs::exists(std::string(place) + name, exists)) {
        fs::create_symlink(std::string(place) + name, folder + "/" + name, exists);
      }
    }
  }
  return folder;
}

void Replace(const std::string& folder) {
  Recording& recording = Current();
  const std::lock_guard lock(recording.mutex);
  recording.folder = folder;
  recording.registry.reset();
}

}  // namespace

bool RecordedMachine::IsAvailable() { return true; }

RecordedMachine::RecordedMachine(const std::string& folder) {
  if (IsMachineRecorded()) throw std::runtime_error("a recorded machine is in force already");
  const std::string real = ExistingFolder(folder);
  if (const char* const path = ::getenv("PATH")) previousPath_ = path;
  filters_ = MakeFilters();
  ::setenv("PATH", (real + "/bin:" + filters_).c_str(), 1);
  SetMachineRoot(real + "/root");
  Replace(real);
  SetRecordedAccounts(std::make_shared<const MachineAccounts>(ReadRecordedAccounts()));
}

RecordedMachine::~RecordedMachine() {
  SetRecordedAccounts(nullptr);
  Replace("");
  SetMachineRoot("");
  if (previousPath_) {
    ::setenv("PATH", previousPath_->c_str(), 1);
  } else {
    ::unsetenv("PATH");
  }
  std::error_code ignored;
  fs::remove_all(filters_, ignored);
}

bool IsMachineRecorded() { return !RecordingFile("").empty(); }

SmBiosBytes RecordedSmBios() {
  const std::string bytes = ReadFileBytes(RecordingFile("smbios.bin"));
  const bool isLong = bytes.compare(0, 5, "_SM3_") == 0;
  const std::size_t shortest = isLong ? 0x18 : 0x1f;
  if (bytes.size() < shortest) return {};
  const auto length = static_cast<unsigned char>(bytes[isLong ? 6 : 5]);
  std::uint32_t address = 0;
  std::memcpy(&address, bytes.data() + (isLong ? 0x10 : 0x18), sizeof(address));
  const bool isInside = address >= length && address < bytes.size();
  const std::size_t begin = isInside ? address : std::min<std::size_t>(length, bytes.size());
  return {bytes.substr(0, length), bytes.substr(begin)};
}

std::shared_ptr<const Registry> CurrentRegistry() {
  const std::string file = RecordingFile("ioregistry.plist");
  const SmBiosBytes smBios = RecordedSmBios();
  Recording& recording = Current();
  const std::lock_guard lock(recording.mutex);
  if (!recording.registry) {
    recording.registry = std::make_shared<const Registry>(ReadFileBytes(file), smBios);
  }
  return recording.registry;
}

std::string RecordingFile(const std::string& name) {
  Recording& recording = Current();
  const std::lock_guard lock(recording.mutex);
  return recording.folder.empty() ? std::string() : recording.folder + "/" + name;
}

}  // namespace Norvik::Platform
