#include "module/Inventory/CdromSection.h"

#include <stdlib.h>
#include <wx/arrstr.h>

#include <boost/format.hpp>
#include <string>
#include <utility>

#include "common/mac/AppleFundation.h"
#include "common/mac/SataInfo.h"
#include "common/text/Text.h"
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

/// Properties of an entry; all of them absent if there is no entry.
class Properties {
 public:
  explicit Properties(const IoObject& entry) : Properties(entry.Get()) {}
  explicit Properties(io_registry_entry_t entry) {
    CFMutableDictionaryRef properties = nullptr;
    if (entry != IO_OBJECT_NULL &&
        IORegistryEntryCreateCFProperties(entry, &properties, kCFAllocatorDefault, 0) ==
            KERN_SUCCESS) {
      dictionary_.Reset(properties);
    }
  }

  wxString Text(const char* key) {
    return AppleFundation::GetCFDictionaryStringProperty(dictionary_.Ref(), key);
  }

 private:
  CfRef<CFDictionaryRef> dictionary_;
};

IoObject Below(IoObject& entry, const char* className) {
  return IoObject(AppleFundation::FindRecursiveChildren(entry.Ref(), className));
}

IoObject Below(unsigned int& entry, const char* className) {
  return IoObject(AppleFundation::FindRecursiveChildren(entry, className));
}

/// The disc in the drive; none without one.
IoObject MediumOf(IoObject& services) {
  const IoObject client = Below(services, "IODVDMediaBSDClient");
  IoObject medium;
  if (client) IORegistryEntryGetParentEntry(client.Get(), kIOServicePlane, medium.Out());
  return medium;
}

/// The dictionary that `diskutil` has written; null if there is none.
CfRef<CFDictionaryRef> ReadDiskFile() {
  const CfRef<CFStringRef> path(
      CFStringCreateWithCString(kCFAllocatorDefault, DISK_FILE, kCFStringEncodingUTF8));
  const CfRef<CFURLRef> url(
      CFURLCreateWithFileSystemPath(kCFAllocatorDefault, path.Get(), kCFURLPOSIXPathStyle, false));
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
  const std::string command =
      (boost::format(DISK_COMMAND) % Common::ToUtf8(record.pnpDeviceId)).str();
  // Whatever it answers, the file decides.
  (void)!::system(command.c_str());
  CfRef<CFDictionaryRef> dictionary = ReadDiskFile();
  if (!dictionary) return;
  record.logicalDisks.push_back(DiskFrom(dictionary.Ref()));
  const wxString kinds =
      AppleFundation::GetCFDictionaryStringProperty(dictionary.Ref(), "OpticalDeviceType");
  // Deliberately with the blanks around the commas: the server knows them so.
  for (const wxString& kind : wxSplit(kinds, ',', '\0')) record.features.insert(kind);
}

}  // namespace

void CdromSection::GetInfo(std::list<CdromInfo>& result) {
  mach_port_t port = MACH_PORT_NULL;
  IOMasterPort(MACH_PORT_NULL, &port);
  IoObject controller(IOServiceGetMatchingService(port, IOServiceMatching(CONTROLLER_CLASS)));
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
  Properties drive(entry);
  record.mediaType = "Unknown";
  record.model = drive.Text("Model");
  record.serial = drive.Text("Serial Number");
  record.busType = drive.Text("Physical Interconnect");

  IoObject services = Below(entry, "IODVDServices");
  // Deliberately emptied if the services have no such key: "Unknown" means that there are none.
  if (services) record.mediaType = Properties(services).Text("device-type");
  record.manufacturer =
      Properties(Below(entry, "IOSCSIPeripheralDeviceNub")).Text("Vendor Identification");

  const IoObject medium = MediumOf(services);
  record.pnpDeviceId += "/dev/";
  record.pnpDeviceId += Properties(medium).Text("BSD Name");
  // Deliberately without a disc as well; the tool then only removes what an earlier run has left.
  AddDisk(record);
}

}  // namespace Norvik::KOB
