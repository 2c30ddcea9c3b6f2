#include "module/Inventory/NetworkDrivesSection.h"

#include <algorithm>
#include <boost/algorithm/string/case_conv.hpp>
#include <boost/format.hpp>
#include <boost/property_tree/ptree.hpp>
#include <exception>
#include <iterator>
#include <locale>

#include "common/log/Logger.h"
#include "common/text/Text.h"
#include "module/Inventory/ProfilerReport.h"
#include "platform/MachinePath.h"

namespace Norvik::KOB {

namespace {

using boost::property_tree::ptree;

constexpr char COMMAND[] = "system_profiler SPNetworkVolumeDataType -xml";
constexpr const char* NETWORK_TYPES[] = {"smbfs", "nfs", "afpfs", "cifs", "autofs"};

bool IsNetworkFileSystem(std::string type) {
  boost::algorithm::to_lower(type, std::locale::classic());
  return std::any_of(std::begin(NETWORK_TYPES), std::end(NETWORK_TYPES),
                     [&](const char* known) { return type.find(known) != std::string::npos; });
}

void AddVolume(const ptree& volume, std::list<NetworkDriveInfo>& result) {
  if (!IsNetworkFileSystem(volume.get("spnetworkvolume_fstypename", ""))) return;
  NetworkDriveInfo drive;
  drive.path = Common::trim_copy(volume.get("spnetworkvolume_mntfromname", ""));
  drive.unit = Common::trim_copy(volume.get("spnetworkvolume_fsmtnonname", ""));
  drive.server = ServerOfVolume(drive.path);
  if (Platform::MachineHas(drive.unit)) {
    result.push_back(drive);
  } else {
    NORVIK_WARNING(boost::format("Skipping network drive: %1% (Mount path does not exist)") %
                   drive.unit);
  }
}

}  // namespace

std::string ServerOfVolume(const std::string& source) {
  const std::size_t at = source.rfind('@');
  // Deliberately the whole source: the server knows volumes of NFS and autofs by it.
  if (at == std::string::npos) return source;
  return source.substr(at + 1, source.find('/', at) - at - 1);
}

void NetworkDrivesSection::GetInfo(std::list<NetworkDriveInfo>& result) {
  NORVIK_SCOPE();
  try {
    const ptree report = ProfilerReportOf(COMMAND);
    for (const auto& [typeName, type] : ChildOrEmpty(report, "array")) {
      for (const auto& [itemName, item] : ChildOrEmpty(type, "_items")) AddVolume(item, result);
    }
  } catch (const std::exception& error) {
    NORVIK_ERROR(boost::format("Error getting network drives info: %1%") % error.what());
  }
}

}  // namespace Norvik::KOB
