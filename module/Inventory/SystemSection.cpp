#include "module/Inventory/SystemSection.h"

#include <chrono>
#include <cstdint>
#include <limits>
#include <string>

#include "common/commands/CommandRunner.h"
#include "common/identification/HostInfoProvider.h"
#include "common/log/Logger.h"
#include "common/text/Text.h"
#include "module/Inventory/ToolOutput.h"
#include "platform/LoginRecords.h"

namespace Norvik::KOB {

namespace {

using Common::WxStringFromStdString;
using std::chrono::system_clock;

constexpr char DOMAIN_COMMAND[] =
    R"(scutil --dns | grep "search domain\[0\]" | uniq | awk -F' : ' '{print $2}')";
constexpr char WORK_GROUP_COMMAND[] =
    "defaults read /Library/Preferences/SystemConfiguration/com.apple.smb.server Workgroup";
constexpr char DESCRIPTION_COMMAND[] =
    "defaults read /Library/Preferences/SystemConfiguration/com.apple.smb.server ServerDescription";
constexpr char PROCESSOR_FEATURES_COMMAND[] = "sysctl machdep.cpu.features";

struct Virtualization {
  const char* feature;
  const char* label;
  const char* keyword;
};
constexpr Virtualization VIRTUALIZATIONS[] = {
    {"VMX", "Virtualization Intel", "vt-x"},
    {"SVM", "Virtualization AMD", "amd-v"},
};

void SetVirtualization(const std::string& features, SystemInfo& result) {
  result.virtualizationAvailable = false;
  for (const Virtualization& virtualization : VIRTUALIZATIONS) {
    if (features.find(virtualization.feature) == std::string::npos) continue;
    result.virtualizationAvailable = true;
    result.virtualizationLabel = virtualization.label;
    result.virtualizationKeyword = virtualization.keyword;
    return;
  }
}

}  // namespace

void SystemSection::GetInfo(SystemInfo& result) {
  NORVIK_SCOPE();
  result.hostName = WxStringFromStdString(Common::HostInfoProvider::GetHostName());
  result.collectionTime = system_clock::to_time_t(system_clock::now());
  result.domain = OutputOf(DOMAIN_COMMAND);
  result.workGroup = OutputOf(WORK_GROUP_COMMAND);
  result.description = OutputOf(DESCRIPTION_COMMAND);
  SetVirtualization(Common::CommandRunner::ExecCommand(PROCESSOR_FEATURES_COMMAND), result);
  SetUserName(result);
}

void SystemSection::SetUserName(SystemInfo& result) {
  // Deliberately every type of entry, including the start of the system.
  long long newest = std::numeric_limits<std::int32_t>::min();
  Platform::LoginRecords records;
  while (const utmpx* const entry = records.Next()) {
    if (entry->ut_tv.tv_sec <= newest) continue;
    newest = entry->ut_tv.tv_sec;
    result.userName = WxStringFromStdString(Platform::LoginRecords::TextOf(entry->ut_user));
  }
}

}  // namespace Norvik::KOB
