#include <chrono>
#include <cstddef>
#include <functional>
#include <type_traits>
#include <utility>

#include "common/identification/HostInfoProvider.h"
#include "common/log/Logger.h"
#include "common/progress/Progress.h"
#include "common/text/OperatingSystemType.h"
#include "common/text/Text.h"
#include "module/DataAccess/DataSource.h"
#include "module/Entities/InventorySections.h"
#include "module/Inventory/GeoLocationCommon.h"
#include "module/KobInventory.h"

namespace Norvik::KOB {

namespace {

using Common::OperatingSystemType;
using Common::SectionKeys;
using Common::SectionScope;
using Common::ToUtf8;
using Common::WxStringFromStdString;
using Of = InventoryKOBInfo;

/// More than most machines have installed; saves the vector its growth.
constexpr std::size_t EXPECTED_SOFTWARE = 8192;

/// The keys of the sections whose values are in these bytes of an inventory, added to the others.
void AddKeys(const Of& inventory, const void* object, std::size_t size, SectionKeys& keys) {
  const auto* const begin = static_cast<const char*>(object);
  const std::less<const char*> isBefore;
  ForEachSection([&](const auto& section) {
    const auto* const value = reinterpret_cast<const char*>(&section.In(inventory));
    if (!isBefore(value, begin) && isBefore(value, begin + size)) keys.emplace_back(section.key);
  });
}

/// The document's keys of what these members of an inventory hold.
template <class... Members>
SectionKeys KeysOf(Members Of::*... members) {
  static const Of inventory{};
  SectionKeys keys;
  (AddKeys(inventory, &(inventory.*members), sizeof(inventory.*members), keys), ...);
  return keys;
}

Common::RecordCounts CountsOf(const Of& inventory) {
  Common::RecordCounts counts;
  ForEachSection([&](const auto& section) {
    using Section = std::decay_t<decltype(section)>;
    const auto& value = section.In(inventory);
    if constexpr (Section::isList) {
      counts[section.key] = value.size();
    } else if constexpr (Section::kind == SectionKind::Location) {
      counts[section.key] = value.IsZero() ? 0 : 1;
    } else {
      counts[section.key] = 1;
    }
  });
  return counts;
}

/// Logs first: if making the section fails, the log shows which one it was.
template <class Result>
void Fill(SectionKeys keys, const char* description, const SectionFactory& factory,
          SectionFactory::Section<Result> (SectionFactory::*make)() const, Result& result) {
  const SectionScope progress(std::move(keys));
  NORVIK_DETAIL(description);
  if (const auto section = (factory.*make)()) section->GetInfo(result);
}

}  // namespace

KobInventory::KobInventory(std::weak_ptr<Common::IDataBase> dataBase,
                           std::weak_ptr<Common::IIdentificationSystem> identification,
                           const Common::KobConfigurationInfo& configuration,
                           const Common::CommunicationsInfo& communications, unsigned int profileId)
    : dataBase_(std::move(dataBase)),
      identification_(std::move(identification)),
      configuration_(configuration),
      communications_(communications),
      profileId_(profileId),
      sectionFactory_(std::make_unique<SectionFactory>(identification_, dataBase_)) {
  InitializeMainSections();
}

void KobInventory::InitializeMainSections() {
  using From = SectionFactory;
  const From& factory = *sectionFactory_;
  Fill(KeysOf(&Of::networkAdapters), "Retrieving network adapters section", factory,
       &From::GetNetworkAdaptersSection, networkAdapters_);
  Fill(KeysOf(&Of::setup, &Of::portConnectors), "Retrieving setup section", factory,
       &From::GetSetupSection, setup_);
  Fill(KeysOf(&Of::operatingSystem), "Retrieving operating system section", factory,
       &From::GetOperatingSystemSection, operatingSystem_);
  Fill(KeysOf(&Of::device), "Retrieving system section", factory, &From::GetSystemSection, system_);
  Fill(KeysOf(&Of::localUsers), "Retrieving Users Information", factory,
       &From::GetLocalUsersSection, localUsers_);
  Fill(KeysOf(&Of::memory, &Of::memorySlots), "Retrieving memory section", factory,
       &From::GetMemorySection, memory_);
}

template <class Result>
Result KobInventory::Retrieve(SectionKeys keys, const char* description,
                              SectionFactory::Section<Result> (SectionFactory::*section)() const) {
  NORVIK_SCOPE();
  Result result;
  Fill(std::move(keys), description, *sectionFactory_, section, result);
  return result;
}

KobInventory::InventoryPointer KobInventory::GenerateInventoryKOB() {
  NORVIK_SCOPE();
  using From = SectionFactory;
  auto inventory = std::make_unique<InventoryKOBInfo>();
  InventoryKOBInfo& it = *inventory;
  const auto retrieve = [&](auto member, const char* description, auto section) {
    it.*member = Retrieve(KeysOf(member), description, section);
  };
  retrieve(&Of::cdroms, "Retrieving cdrom section", &From::GetCdromSection);
  it.configuration = GetConfigurationInfo();
  it.device = GetDeviceInfo();
  retrieve(&Of::hardware, "Retrieving hardware section", &From::GetHardwareSection);
  it.features = GetFeatureInfo();
  it.location = GetGeoLocationInfo();
  it.localUsers = GetLocalUsersInfo();
  retrieve(&Of::keyboards, "Retrieving keyboard section", &From::GetKeyboardSection);
  retrieve(&Of::monitors, "Retrieving monitor section", &From::GetMonitorsSection);
  it.networkAdapters = networkAdapters_;
  retrieve(&Of::networkDrives, "Retrieving network drives section", &From::GetNetworkDrivesSection);
  it.operatingSystem = operatingSystem_;
  retrieve(&Of::printers, "Retrieving printer section", &From::GetPrinterSection);
  retrieve(&Of::startupCommands, "Retrieving run command section", &From::GetRunCommandsSection);
  retrieve(&Of::services, "Retrieving service section", &From::GetServicesSection);
  retrieve(&Of::sharedResources, "Retrieving shared resources section",
           &From::GetSharedResourcesSection);
  retrieve(&Of::firmware, "Retrieving bios section", &From::GetBiosSection);
  retrieve(&Of::systemSlots, "Retrieving boardslots section", &From::GetBoardSlotsSection);
  retrieve(&Of::videoCards, "Retrieving video section", &From::GetVideoSection);
  it.software = GetSoftwareRegisteredInfo();
  retrieve(&Of::physicalDisks, "Retrieving physical disk section", &From::GetPhysicalDiskSection);
  it.memorySlots = memory_.devices;
  it.memory = memory_;
  it.portConnectors = setup_.portConnectors;
  retrieve(&Of::processors, "Retrieving processor section", &From::GetProcessorsSection);
  it.setup = setup_;
  Common::ReportRecords(CountsOf(it));
  return inventory;
}

ConfigurationInfo KobInventory::GetConfigurationInfo() {
  NORVIK_SCOPE();
  const SectionScope progress(KeysOf(&Of::configuration));
  NORVIK_DETAIL("Retrieving configuration section");
  ConfigurationInfo result;
  result.agentVersion = WxStringFromStdString(Common::GetAgentVersion());
  result.profileId = static_cast<int>(profileId_);
  result.communicationsNumber = static_cast<std::uint16_t>(communications_.port & 0xFFFFU);
  result.communicationsText = WxStringFromStdString(communications_.address);
  return result;
}

const DeviceInfo& KobInventory::GetDeviceInfo() {
  NORVIK_SCOPE();
  const SectionScope progress(KeysOf(&Of::device));
  NORVIK_DETAIL("Retrieving device section");
  device_ = DeviceInfo();
  if (const auto identity = identification_.lock()) device_.guid = identity->GetAgentIdentifier();
  GetOperatingSystemType();
  device_.name = ToUtf8(system_.hostName);
  device_.assetDate = std::chrono::duration_cast<std::chrono::milliseconds>(
                          std::chrono::system_clock::now().time_since_epoch())
                          .count();
  device_.description = ToUtf8(system_.description);
  device_.domain = ToUtf8(system_.domain);
  device_.workGroup = ToUtf8(system_.workGroup);
  device_.userName = ToUtf8(system_.userName);
  device_.server = ToUtf8(system_.server);
  device_.type = system_.type;

  const auto functions = CreateIdFunctionsMap();
  const auto function = functions.find(identifier_.type);
  if (function != functions.end()) {
    const std::string found =
        function->second({setup_, networkAdapters_, system_.hostName, identifier_.identifier});
    identifier_.identifier =
        WxStringFromStdString(Common::CharacterConverter::ChangeSpecialCharacter(found));
  } else {
    identifier_ = {system_.hostName, IdType::PC};
  }
  device_.alias = ToUtf8(identifier_.identifier);
  return device_;
}

void KobInventory::GetOperatingSystemType() {
  using Types = OperatingSystemType::Types;
  system_.type = 0;
  for (const Types type :
       {OperatingSystemType::MACOS, OperatingSystemType::LINUX, OperatingSystemType::WINDOWS}) {
    const wxString name = WxStringFromStdString(OperatingSystemType::ToString(type));
    if (!operatingSystem_.family.IsSameAs(name, false)) continue;
    system_.type = static_cast<unsigned char>(type);
    return;
  }
}

std::vector<FeaturesInfo> KobInventory::GetFeatureInfo() {
  NORVIK_SCOPE();
  const SectionScope progress(KeysOf(&Of::features));
  NORVIK_DETAIL("Retrieving feature section");
  // Deliberately nothing: the section is left out on this system.
  return {};
}

GeoLocationPoint KobInventory::GetGeoLocationInfo() {
  NORVIK_SCOPE();
  const SectionScope progress(KeysOf(&Of::location));
  NORVIK_DETAIL("Retrieving Geolocation section");
  return GeoLocationCommon().GetLocation();
}

LocalUserInfo KobInventory::GetLocalUsersInfo() {
  NORVIK_SCOPE();
  const SectionScope progress(KeysOf(&Of::localUsers));
  NORVIK_DETAIL("Retrieving local user section");
  return localUsers_.size() == 1 ? localUsers_.front() : LocalUserInfo();
}

std::vector<Common::SoftwareRegisteredInfo> KobInventory::GetSoftwareRegisteredInfo() {
  NORVIK_SCOPE();
  const SectionScope progress(KeysOf(&Of::software));
  NORVIK_DETAIL("Retrieving software registered section");
  // Only its constructor is needed: it sets the defaults of the module's store.
  const KOBDataSource store(dataBase_);
  std::vector<Common::SoftwareRegisteredInfo> result;
  result.reserve(EXPECTED_SOFTWARE);
  sectionFactory_->GetSoftwareRegisteredSection()->GetInfo(result);
  return result;
}

}  // namespace Norvik::KOB
