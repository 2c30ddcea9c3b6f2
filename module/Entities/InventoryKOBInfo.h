#pragma once

#include <boost/optional.hpp>
#include <boost/property_tree/ptree_fwd.hpp>
#include <iosfwd>
#include <list>
#include <vector>

#include "common/records/MemoryInfo.h"
#include "common/records/NetworkAdapterInfo.h"
#include "common/records/OperatingSystemInfo.h"
#include "common/records/PhysicalDiskInfo.h"
#include "common/records/ProcessorInfo.h"
#include "common/records/SetupInfo.h"
#include "common/records/SmbMemoryDeviceInfo.h"
#include "common/records/SmbPortConnectorInfo.h"
#include "common/records/SoftwareRegisteredInfo.h"
#include "module/Entities/CdromInfo.h"
#include "module/Entities/ConfigurationInfo.h"
#include "module/Entities/DeviceInfo.h"
#include "module/Entities/FeaturesInfo.h"
#include "module/Entities/GeoLocationPoint.h"
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
#include "module/Entities/VideoInfo.h"

namespace Norvik::KOB {

/// One complete inventory of the machine. The list in InventorySections.h says which members are
/// sections of the document, and how each is written, read and compared.
class InventoryKOBInfo : public Common::ISerializerJson {
 public:
  InventoryKOBInfo() = default;
  /// From the root of a stored document, without the device, which is not read. Throws
  /// `ptree_bad_path` if another section is missing; a field that is missing inside a section takes
  /// its default, and unknown keys are ignored.
  explicit InventoryKOBInfo(const boost::property_tree::ptree& document);
  InventoryKOBInfo(const InventoryKOBInfo&) = default;
  InventoryKOBInfo(InventoryKOBInfo&&) = default;
  InventoryKOBInfo& operator=(const InventoryKOBInfo&) = default;
  InventoryKOBInfo& operator=(InventoryKOBInfo&&) = default;
  /// Virtual: an `IncrementalInventoryKOBInfo` is owned through this class.
  virtual ~InventoryKOBInfo();

  /// An object with the key of every section. An empty list and a location of zero are null.
  operator json::JSON() const override;
  /// Writes the text of that object, one record at a time: the JSON of a large inventory takes
  /// several times the memory of its text.
  void WriteTo(std::ostream& stream) const;

  std::list<CdromInfo> cdroms;
  ConfigurationInfo configuration;
  DeviceInfo device;
  std::list<HardwareInfo> hardware;
  std::vector<FeaturesInfo> features;
  GeoLocationPoint location;
  LocalUserInfo localUsers;
  std::list<KeyboardInfo> keyboards;
  std::list<MonitorInfo> monitors;
  std::list<Common::NetworkAdapterInfo> networkAdapters;
  std::list<NetworkDriveInfo> networkDrives;
  Common::OperatingSystemInfo operatingSystem;
  std::list<PrinterInfo> printers;
  std::list<RunCommandInfo> startupCommands;
  std::list<ServiceInfo> services;
  std::list<SharedResourceInfo> sharedResources;
  SmBiosInfo firmware;
  boost::optional<SmBiosInfo> secondFirmware;  ///< always empty; not in the document
  std::list<SmbSystemSlotInfo> systemSlots;
  std::list<VideoInfo> videoCards;
  std::vector<Common::SoftwareRegisteredInfo> software;
  std::list<Common::PhysicalDiskInfo> physicalDisks;
  std::list<Common::SmbMemoryDeviceInfo> memorySlots;
  Common::MemoryInfo memory;
  std::list<Common::SmbPortConnectorInfo> portConnectors;
  std::list<Common::ProcessorInfo> processors;
  Common::SetupInfo setup;
};

}  // namespace Norvik::KOB
