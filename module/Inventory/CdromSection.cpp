#include "module/Inventory/CdromSection.h"

#include <wx/arrstr.h>

#include <boost/format.hpp>
#include <string>
#include <utility>

#include "common/apple/AppleFundation.h"
#include "common/log/Logger.h"
#include "common/text/Text.h"
#include "module/Inventory/RegistryProperties.h"
#include "module/Inventory/ToolOutput.h"
#include "platform/CfText.h"
#include "platform/ScopedHandle.h"

namespace Norvik::KOB {

namespace {

using Common::AppleFundation;
using Platform::CfRef;
using Platform::IoObject;

constexpr char CONTROLLER_CLASS[] = "AppleACPIPCI";
constexpr char DISK_FILE[] = "/tmp/diskInfo.plist";
constexpr char DISK_COMMAND[] =
    "rm /tmp/diskInfo.plist;diskutil info -plist %s > /tmp/diskInfo.plist";

/// The first entry of a class below an entry; empty if no entry matches.
IoObject FindDescendant(unsigned int& entry, const char* className) {
  return IoObject(AppleFundation::FindRecursiveChildren(entry, className));
}

/// The disc in the drive; empty without one.
IoObject MediumOf(IoObject& services) {
  const IoObject client = FindDescendant(services.Ref(), "IODVDMediaBSDClient");
  IoObject medium;
  if (client) IORegistryEntryGetParentEntry(client.Get(), kIOServicePlane, medium.Out());
  return medium;
}

/// Whether `diskutil` reports that there is no such disk, as it does for an empty drive.
bool IsError(CFDictionaryRef report) {
  const CFTypeRef value = CFDictionaryGetValue(report, Platform::CfTextOf("Error").Get());
  return value && CFGetTypeID(value) == CFBooleanGetTypeID() &&
         CFBooleanGetValue(static_cast<CFBooleanRef>(value));
}

/// The dictionary that `diskutil` wrote; null without a dictionary.
CfRef<CFDictionaryRef> ReadDiskFile() {
  const CfRef<CFURLRef> url(CFURLCreateWithFileSystemPath(
      kCFAllocatorDefault, Platform::CfTextOf(DISK_FILE).Get(), kCFURLPOSIXPathStyle, false));
  CfRef<CFPropertyListRef> list(AppleFundation::CreateMyPropertyListFromFile(url.Get()));
  if (!list || CFGetTypeID(list.Get()) != CFDictionaryGetTypeID()) return {};
  return CfRef<CFDictionaryRef>(static_cast<CFDictionaryRef>(list.Release()));
}

Common::LogicalDiskInfo DiskFrom(CFDictionaryRef& dictionary) {
  const auto text = [&dictionary](const char* key) {
    return Common::ToUtf8(AppleFundation::GetCFDictionaryStringProperty(dictionary, key));
  };
  Common::LogicalDiskInfo disk;
  disk.sizeBytes = AppleFundation::GetCFDictionaryIntergerProperty(dictionary, "TotalSize");
  disk.mountPoint = text("MountPoint");
  disk.volumeName = text("VolumeName");
  disk.fileSystemType = text("FilesystemType");
  disk.fileSystemName = text("FilesystemUserVisibleName");
  return disk;
}

void AddDisk(CdromInfo& record) {
  RunToFile((boost::format(DISK_COMMAND) % Common::ToUtf8(record.pnpDeviceId)).str());
  CfRef<CFDictionaryRef> dictionary = ReadDiskFile();
  if (!dictionary || IsError(dictionary.Get())) return;
  record.logicalDisks.push_back(DiskFrom(dictionary.Ref()));
  const wxString kinds =
      AppleFundation::GetCFDictionaryStringProperty(dictionary.Ref(), "OpticalDeviceType");
  // Deliberately keeps the spaces around the commas: the server expects them.
  for (const wxString& kind : wxSplit(kinds, ',', '\0')) record.features.insert(kind);
}

}  // namespace

void CdromSection::GetInfo(std::list<CdromInfo>& result) {
  NORVIK_SCOPE();
  IoObject controller(
      IOServiceGetMatchingService(MACH_PORT_NULL, IOServiceMatching(CONTROLLER_CLASS)));
  if (!controller) return;
  std::list<unsigned int> handles;
  Common::SataInfo::GetSataDevicesEntry(controller.Ref(), handles);
  std::list<IoObject> entries;
  for (const unsigned int handle : handles) entries.emplace_back(handle);
  for (const IoObject& entry : entries) {
    IoObject child;
    if (IORegistryEntryGetChildEntry(entry.Get(), kIOServicePlane, child.Out()) != KERN_SUCCESS) {
      continue;
    }
    io_name_t name = {};
    IORegistryEntryGetName(child.Get(), name);
    if (std::string(name).find("IOAHCISerialATAPI") == std::string::npos) continue;
    CdromInfo record;
    GetCdromDiskInfo(child.Ref(), record);
    result.push_back(std::move(record));
  }
}

void GetCdromDiskInfo(unsigned int& entry, CdromInfo& record) {
  RegistryProperties drive(entry);
  record.mediaType = "Unknown";
  record.model = drive.Text("Model");
  record.serial = drive.Text("Serial Number");
  record.busType = drive.Text("Physical Interconnect");

  IoObject services = FindDescendant(entry, "IODVDServices");
  // Deliberately empty if the services have no such key: "Unknown" means that there are no
  // services.
  if (services) record.mediaType = RegistryProperties(services.Get()).Text("device-type");
  const IoObject nub = FindDescendant(entry, "IOSCSIPeripheralDeviceNub");
  record.manufacturer = RegistryProperties(nub.Get()).Text("Vendor Identification");

  const IoObject medium = MediumOf(services);
  record.pnpDeviceId += "/dev/";
  record.pnpDeviceId += RegistryProperties(medium.Get()).Text("BSD Name");
  // Deliberately also without a disc: the command then only removes the file of an earlier run.
  AddDisk(record);
}

}  // namespace Norvik::KOB
