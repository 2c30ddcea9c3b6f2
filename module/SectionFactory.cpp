#include "module/SectionFactory.h"

#include <utility>

#include "common/inventory/SoftwareRegisteredSection.h"
#include "module/CommonInventorySections/AlternativeBiosSection.h"
#include "module/CommonInventorySections/AlternativeBoardSlotsSection.h"
#include "module/CommonInventorySections/BiosSection.h"
#include "module/CommonInventorySections/BoardSlotsSection.h"
#include "module/CommonInventorySections/GivenSections.h"
#include "module/Inventory/CSharedResourcesSection.h"
#include "module/Inventory/CdromSection.h"
#include "module/Inventory/HardwareSection.h"
#include "module/Inventory/KeyboardSection.h"
#include "module/Inventory/LocalUsersSection.h"
#include "module/Inventory/MonitorsSection.h"
#include "module/Inventory/NetworkDrivesSection.h"
#include "module/Inventory/PrintersSection.h"
#include "module/Inventory/RunCommandsSection.h"
#include "module/Inventory/ServicesSection.h"
#include "module/Inventory/SystemSection.h"
#include "module/Inventory/VideoSection.h"

namespace Norvik::KOB {

namespace {

/// The one choice of the factory: by the SMBIOS table, or by other sources of the system.
template <class Interface, class FromSmBios, class Alternative>
std::unique_ptr<Interface> ChooseBySmBios(const std::weak_ptr<Common::SmBios>& smBios) {
  const std::shared_ptr<Common::SmBios> reader = smBios.lock();
  if (!reader) return nullptr;
  if (reader->IsValid()) return std::make_unique<FromSmBios>(smBios);
  return std::make_unique<Alternative>();
}

}  // namespace

SectionFactory::SectionFactory(std::weak_ptr<Common::IIdentificationSystem> identification,
                               std::weak_ptr<Common::IDataBase> dataBase)
    : identification_(std::move(identification)), dataBase_(std::move(dataBase)) {
  const std::shared_ptr<Common::IIdentificationSystem> locked(identification_);
  firstInventory_ = locked->GetFirstInventoryInfo();
  smBios_ = locked->GetSmBios();
}

auto SectionFactory::GetBiosSection() const -> Section<SmBiosInfo> {
  return ChooseBySmBios<Common::ISection<SmBiosInfo>, BiosSection, AlternativeBiosSection>(smBios_);
}

auto SectionFactory::GetBoardSlotsSection() const -> ListSection<SmbSystemSlotInfo> {
  return ChooseBySmBios<Common::ISection<std::list<SmbSystemSlotInfo>>, BoardSlotsSection,
                        AlternativeBoardSlotsSection>(smBios_);
}

auto SectionFactory::GetCdromSection() const -> ListSection<CdromInfo> {
  return std::make_unique<CdromSection>();
}

auto SectionFactory::GetHardwareSection() const -> ListSection<HardwareInfo> {
  return std::make_unique<HardwareSection>();
}

auto SectionFactory::GetKeyboardSection() const -> ListSection<KeyboardInfo> {
  return std::make_unique<KeyboardSection>();
}

auto SectionFactory::GetLocalUsersSection() const -> ListSection<LocalUserInfo> {
  return std::make_unique<LocalUsersSection>();
}

auto SectionFactory::GetMemorySection() const -> Section<Common::MemoryInfo> {
  return std::make_unique<MemorySection>(firstInventory_.memory);
}

auto SectionFactory::GetMonitorsSection() const -> ListSection<MonitorInfo> {
  return std::make_unique<MonitorsSection>();
}

auto SectionFactory::GetNetworkAdaptersSection() const -> ListSection<Common::NetworkAdapterInfo> {
  return std::make_unique<NetworkAdaptersSection>(firstInventory_.networkAdapters);
}

auto SectionFactory::GetNetworkDrivesSection() const -> ListSection<NetworkDriveInfo> {
  return std::make_unique<NetworkDrivesSection>(dataBase_);
}

auto SectionFactory::GetOperatingSystemSection() const -> Section<Common::OperatingSystemInfo> {
  return std::make_unique<OperatingSystemSection>(firstInventory_.operatingSystem);
}

auto SectionFactory::GetPhysicalDiskSection() const -> ListSection<Common::PhysicalDiskInfo> {
  return std::make_unique<PhysicalDisksSection>(firstInventory_.physicalDisks);
}

auto SectionFactory::GetPrinterSection() const -> ListSection<PrinterInfo> {
  return std::make_unique<PrintersSection>();
}

auto SectionFactory::GetProcessorsSection() const -> ListSection<Common::ProcessorInfo> {
  return std::make_unique<ProcessorsSection>(firstInventory_.processors);
}

auto SectionFactory::GetRunCommandsSection() const -> ListSection<RunCommandInfo> {
  return std::make_unique<RunCommandsSection>();
}

auto SectionFactory::GetServicesSection() const -> ListSection<ServiceInfo> {
  return std::make_unique<ServicesSection>();
}

auto SectionFactory::GetSetupSection() const -> Section<Common::SetupInfo> {
  return std::make_unique<SetupSection>(firstInventory_.setup);
}

auto SectionFactory::GetSharedResourcesSection() const -> ListSection<SharedResourceInfo> {
  return std::make_unique<CSharedResourcesSection>();
}

auto SectionFactory::GetSoftwareRegisteredSection() const
    -> Section<std::vector<Common::SoftwareRegisteredInfo>> {
  return std::make_unique<Common::SoftwareRegisteredSection>();
}

auto SectionFactory::GetSystemSection() const -> Section<SystemInfo> {
  return std::make_unique<SystemSection>();
}

auto SectionFactory::GetVideoSection() const -> ListSection<VideoInfo> {
  return std::make_unique<VideoSection>();
}

}  // namespace Norvik::KOB
