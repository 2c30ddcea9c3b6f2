#pragma once

#include <list>
#include <memory>
#include <vector>

#include "common/database/IDataBase.h"
#include "common/identification/IIdentificationSystem.h"
#include "common/inventory/ISection.h"
#include "common/records/SoftwareRegisteredInfo.h"
#include "module/Entities/CdromInfo.h"
#include "module/Entities/HardwareInfo.h"
#include "module/Entities/KeyboardInfo.h"
#include "module/Entities/LocalUserInfo.h"
#include "module/Entities/MonitorInfo.h"
#include "module/Entities/NetworkDriveInfo.h"
#include "module/Entities/PrinterInfo.h"
#include "module/Entities/RunCommandInfo.h"
#include "module/Entities/ServiceInfo.h"
#include "module/Entities/SharedResourceInfo.h"
#include "module/Entities/SmBiosInfo.h"
#include "module/Entities/SmbSystemSlotInfo.h"
#include "module/Entities/SystemInfo.h"
#include "module/Entities/VideoInfo.h"

namespace Norvik::KOB {

/// Makes the collectors of one inventory, a new one at each call. What the agent gathered for
/// itself is copied once, at construction.
class SectionFactory {
 public:
  template <class T>
  using Section = std::unique_ptr<Common::ISection<T>>;
  template <class T>
  using ListSection = Section<std::list<T>>;

  /// Throws `std::bad_weak_ptr` if the identification no longer exists, and what it throws.
  SectionFactory(std::weak_ptr<Common::IIdentificationSystem> identification,
                 std::weak_ptr<Common::IDataBase> dataBase);

  /// From the SMBIOS table where there is one. Null if its reader no longer exists.
  Section<SmBiosInfo> GetBiosSection() const;
  ListSection<SmbSystemSlotInfo> GetBoardSlotsSection() const;

  ListSection<CdromInfo> GetCdromSection() const;
  ListSection<HardwareInfo> GetHardwareSection() const;
  ListSection<KeyboardInfo> GetKeyboardSection() const;
  ListSection<LocalUserInfo> GetLocalUsersSection() const;
  Section<Common::MemoryInfo> GetMemorySection() const;
  ListSection<MonitorInfo> GetMonitorsSection() const;
  ListSection<Common::NetworkAdapterInfo> GetNetworkAdaptersSection() const;
  ListSection<NetworkDriveInfo> GetNetworkDrivesSection() const;
  Section<Common::OperatingSystemInfo> GetOperatingSystemSection() const;
  ListSection<Common::PhysicalDiskInfo> GetPhysicalDiskSection() const;
  ListSection<PrinterInfo> GetPrinterSection() const;
  ListSection<Common::ProcessorInfo> GetProcessorsSection() const;
  ListSection<RunCommandInfo> GetRunCommandsSection() const;
  ListSection<ServiceInfo> GetServicesSection() const;
  Section<Common::SetupInfo> GetSetupSection() const;
  ListSection<SharedResourceInfo> GetSharedResourcesSection() const;
  Section<std::vector<Common::SoftwareRegisteredInfo>> GetSoftwareRegisteredSection() const;
  Section<SystemInfo> GetSystemSection() const;
  ListSection<VideoInfo> GetVideoSection() const;

 private:
  std::weak_ptr<Common::IIdentificationSystem> identification_;
  std::weak_ptr<Common::SmBios> smBios_;
  std::weak_ptr<Common::IDataBase> dataBase_;
  Common::FirstInventoryInfo firstInventory_;
};

}  // namespace Norvik::KOB
