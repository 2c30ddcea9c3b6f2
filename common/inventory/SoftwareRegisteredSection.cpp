#include "common/inventory/SoftwareRegisteredSection.h"

#include <sys/stat.h>

#include <ctime>
#include <fstream>
#include <iterator>
#include <string>

#include "common/commands/CommandRunner.h"
#include "common/inventory/ApplicationBundles.h"
#include "common/inventory/ApplicationsReport.h"
#include "common/inventory/PackageDatabase.h"
#include "common/log/Logger.h"
#include "platform/MachinePath.h"

namespace Norvik::Common {

namespace {

/// The time of the file list that the package manager wrote when it installed the package. For
/// packages that can be installed for several architectures at once, the name has the architecture.
std::time_t InstallDate(const std::string& package, const std::string& architecture) {
  const std::string base = Platform::MachinePath("/var/lib/dpkg/info/") + package;
  struct stat status {};
  for (const auto& path : {base + ".list", base + ":" + architecture + ".list"}) {
    if (::stat(path.c_str(), &status) == 0) return status.st_mtime;
  }
  return 0;
}

void Append(std::vector<SoftwareRegisteredInfo>&& found,
            std::vector<SoftwareRegisteredInfo>& result) {
  result.insert(result.end(), std::make_move_iterator(found.begin()),
                std::make_move_iterator(found.end()));
}

/// The report is empty while Spotlight is off. Without another source, an incremental inventory
/// would then delete all applications.
std::vector<SoftwareRegisteredInfo> Applications() {
  auto found = ReadApplicationsReport(
      CommandRunner::ExecCommand("system_profiler -xml SPApplicationsDataType"));
  if (!found.empty()) return found;
  found = ReadApplicationBundles();
  NORVIK_WARNING("system_profiler reports no applications; found in their folders: " +
                 std::to_string(found.size()));
  return found;
}

}  // namespace

void SoftwareRegisteredSection::GetInfo(std::vector<SoftwareRegisteredInfo>& result) {
  std::ifstream status(Platform::MachinePath("/var/lib/dpkg/status"));
  if (status) {
    Append(ReadPackageStatus(status, InstallDate), result);
  } else {
    Append(Applications(), result);
  }
}

}  // namespace Norvik::Common
