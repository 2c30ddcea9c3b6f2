#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <iterator>
#include <stdexcept>

#include "cli/RecordedMachineOption.h"
#include "host/HostError.h"
#include "platform/RecordedMachine.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

bool IsRecording(const boost::filesystem::path& folder) {
  static constexpr const char* PARTS[] = {"bin",           "root",           "ioregistry.plist",
                                          "location.json", "processes.json", "smbios.bin"};
  return std::any_of(std::begin(PARTS), std::end(PARTS),
                     [&](const char* part) { return boost::filesystem::exists(folder / part); });
}

}  // namespace

bool HasRecordedMachines() { return Platform::RecordedMachine::IsAvailable(); }

std::shared_ptr<const void> UseRecordedMachine(const boost::filesystem::path& folder) {
  if (folder.empty()) return nullptr;
  if (boost::filesystem::is_directory(folder) && !IsRecording(folder)) {
    throw UsageError("--machine: " + folder.string() + " holds nothing of a recorded machine, as " +
                     "bin, root or ioregistry.plist");
  }
  try {
    return std::make_shared<const Platform::RecordedMachine>(folder.string());
  } catch (const std::runtime_error& error) {
    throw UsageError(std::string("--machine: ") + error.what());
  }
}

}  // namespace Norvik::Cli
