#include "host/redaction/DocumentProperties.h"

#include <map>
#include <utility>

namespace Norvik::Host {

namespace {

using Kind = SensitiveKind;

/// All properties of the schemas that are values or lists of values.
constexpr struct {
  const char* section;
  Kind kind;
  const char* keys;
} PROPERTIES[] = {
    {"", Kind::HARMLESS, "typeInventory"},
    {"addresses", Kind::ADDRESS, "address"},
    {"addresses", Kind::HARMLESS, "mask"},
    {"agentConfiguration", Kind::HARMLESS, "agentVersion profileId"},
    {"baseboard", Kind::SERIAL, "assetTag serial"},
    {"baseboard", Kind::HARMLESS, "manufacturer product version"},
    {"bios", Kind::HARMLESS, "date manufacturer romSize version"},
    {"boards", Kind::HARMLESS, "description name slotId type"},
    {"caches", Kind::HARMLESS, "level maximumBytes name sizeBytes type"},
    {"cdrom", Kind::HARMLESS, "busType features manufacturer mediaType model pnpDeviceId"},
    {"cdrom", Kind::SERIAL, "serial"},
    {"chassis", Kind::SERIAL, "assetTag serial"},
    {"chassis", Kind::HARMLESS,
     "bootUpState manufacturer oemInformation powerSupplyState securityStatus sku thermalState "
     "type typeName version"},
    {"detail", Kind::HARMLESS, "fileVersion productVersion"},
    {"detail", Kind::TITLE, "description manufacturer name"},
    {"device", Kind::HEX, "guid"},
    {"device", Kind::HOST, "alias description name server"},
    {"device", Kind::SEARCH_DOMAIN, "domain"},
    {"device", Kind::NAME, "userName workGroup"},
    {"device", Kind::HARMLESS, "assetDate type"},
    {"devices", Kind::SERIAL, "assetTag serial"},
    {"devices", Kind::HARMLESS, "bank formFactor manufacturer model name sizeBytes speedMhz type"},
    {"disk", Kind::SERIAL, "serial"},
    {"disk", Kind::TITLE, "model"},
    {"disk", Kind::HARMLESS, "busType manufacturer mediaType pnpDeviceId sizeBytes"},
    {"displays", Kind::SERIAL, "serial"},
    {"displays", Kind::TITLE, "name"},
    {"displays", Kind::HARMLESS, "date manufacturer model revision"},
    {"drivers", Kind::WORDS, "name"},
    {"drivers", Kind::HARMLESS, "driverError manufacturer pnpDeviceId state type"},
    {"features", Kind::HARMLESS, "name version"},
    {"files", Kind::PATH, "filename"},
    {"files", Kind::HARMLESS, "executable extension fileStatus lastMod size"},
    {"group", Kind::NAME, "description name"},
    {"keyboard", Kind::WORDS, "description"},
    {"keyboard", Kind::HARMLESS, "country language layout manufacturer pnpDeviceId type"},
    {"location", Kind::POSITION, "height latitude longitude"},
    {"location", Kind::HARMLESS, "acceleration"},
    {"logicalDisk", Kind::LABEL, "volumeName"},
    {"logicalDisk", Kind::PATH, "mountPoint"},
    {"logicalDisk", Kind::HARMLESS, "device fileSystemName fileSystemType freeBytes sizeBytes"},
    {"memory", Kind::HARMLESS,
     "errorCorrection hugePageBytes location maximumBytes pageBytes slotCount swapBytes "
     "totalBytes"},
    {"memorySlot", Kind::SERIAL, "assetTag serial"},
    {"memorySlot", Kind::HARMLESS,
     "bank formFactor manufacturer model name sizeBytes speedMhz type"},
    {"networkAdapter", Kind::HEX, "macAddress"},
    {"networkAdapter", Kind::ADDRESS, "dhcpServers dnsServers gateways"},
    {"networkAdapter", Kind::WORDS, "description type"},
    {"networkAdapter", Kind::HARMLESS, "hardwareType manufacturer mtu name speedMbps vlan"},
    {"os", Kind::SERIAL, "serialNumber"},
    {"os", Kind::NAME, "organization registeredUser"},
    {"os", Kind::HARMLESS,
     "architecture bootVolume build codeName family installDate kernel kernelVersion language "
     "name timeZone version"},
    {"partition", Kind::LABEL, "label"},
    {"partition", Kind::HEX, "uuid"},
    {"partition", Kind::HARMLESS,
     "bootable device fileSystemType index offsetBytes readOnly sizeBytes type"},
    {"paths", Kind::PATH, "pathName"},
    {"permissions", Kind::NAME, "user"},
    {"permissions", Kind::HARMLESS, "access type"},
    {"portConnectors", Kind::HARMLESS,
     "erd externalConnector internalConnector name type typeCode"},
    {"printer", Kind::LABEL, "description name"},
    {"printer", Kind::URI, "port"},
    {"printer", Kind::TITLE, "driverName"},
    {"printer", Kind::HARMLESS, "manufacturer"},
    {"processorSlot", Kind::SERIAL, "assetTag serial"},
    {"processorSlot", Kind::HARMLESS,
     "architecture busMhz cores features identifier index manufacturer maximumMhz model "
     "partNumber socket threads"},
    {"service", Kind::PATH, "command"},
    {"service", Kind::TITLE, "description displayName name"},
    {"service", Kind::HARMLESS, "startupMode state"},
    {"setup", Kind::HARMLESS, "modelIdentifier"},
    {"sharedResources", Kind::LABEL, "description name"},
    {"sharedResources", Kind::PATH, "path"},
    {"sharedResources", Kind::HARMLESS, "type"},
    {"software", Kind::PATH, "location softwareKey uninstallCommand"},
    {"software", Kind::TITLE, "description name parentKey publisher signedBy url"},
    {"software", Kind::HARMLESS,
     "architecture category installDate isPatch language productCode releaseType sizeBytes source "
     "systemComponent version"},
    {"startupCommand", Kind::PATH, "command path"},
    {"startupCommand", Kind::TITLE, "name"},
    {"startupCommand", Kind::HARMLESS, "type"},
    {"system", Kind::SERIAL, "serial"},
    {"system", Kind::HEX, "uuid"},
    {"system", Kind::HARMLESS, "family manufacturer product sku version"},
    {"unitMappings", Kind::HOST, "path server"},
    {"unitMappings", Kind::PATH, "unit"},
    {"user", Kind::NAME, "description fullUserName name userName"},
    {"user", Kind::HARMLESS, "enabled locked passwordChange passwordExpire passwordRequired"},
    {"videoCards", Kind::HARMLESS,
     "chipset dac date driverName manufacturer name size version versionBios"},
};

using Properties = std::map<std::pair<std::string, std::string>, Kind>;

Properties ByKey() {
  Properties properties;
  for (const auto& [section, kind, keys] : PROPERTIES) {
    for (const auto& key : WordsIn(keys, " ")) properties[{section, key}] = kind;
  }
  return properties;
}

}  // namespace

std::optional<SensitiveKind> KindOfProperty(const std::string& section, const std::string& key) {
  static const Properties properties = ByKey();
  const auto found = properties.find({section, key});
  if (found == properties.end()) return {};
  return found->second;
}

}  // namespace Norvik::Host
