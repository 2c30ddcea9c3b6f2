#include "common/text/Text.h"
#include "machine/SmbiosFacts.h"
#include "machine/SmbiosNames.h"
#include "machine/linux/GatherFromFiles.h"

namespace Norvik::Machine {

namespace {

using namespace Common;

constexpr char DMI_FOLDER[] = "/sys/class/dmi/id/";

void Complete(std::string& text, const SystemFiles& files, const char* name) {
  if (text.empty()) text = files.Text(std::string(DMI_FOLDER) + name);
}

void Complete(wxString& text, const SystemFiles& files, const char* name) {
  if (text.empty()) text = WxStringFromStdString(files.Text(std::string(DMI_FOLDER) + name));
}

}  // namespace

std::shared_ptr<SmBios> ReadSmBios(const SystemFiles& files) {
  const std::string folder = "/sys/firmware/dmi/tables/";
  return MakeSmBios(files.Bytes(folder + "smbios_entry_point"), files.Bytes(folder + "DMI"));
}

void CompleteSetup(const SystemFiles& files, SetupInfo& setup) {
  Complete(setup.baseboard.manufacturer, files, "board_vendor");
  Complete(setup.baseboard.product, files, "board_name");
  Complete(setup.baseboard.version, files, "board_version");
  Complete(setup.baseboard.serial, files, "board_serial");
  Complete(setup.baseboard.assetTag, files, "board_asset_tag");
  Complete(setup.chassis.manufacturer, files, "chassis_vendor");
  Complete(setup.chassis.version, files, "chassis_version");
  Complete(setup.chassis.serial, files, "chassis_serial");
  Complete(setup.chassis.assetTag, files, "chassis_asset_tag");
  Complete(setup.system.manufacturer, files, "sys_vendor");
  Complete(setup.system.product, files, "product_name");
  Complete(setup.system.version, files, "product_version");
  Complete(setup.system.family, files, "product_family");
  Complete(setup.system.serial, files, "product_serial");
  Complete(setup.system.sku, files, "product_sku");
  Complete(setup.system.uuid, files, "product_uuid");
  if (setup.chassis.type == 0) {
    const auto type = files.Number(std::string(DMI_FOLDER) + "chassis_type");
    setup.chassis.type = static_cast<std::uint8_t>(type);
    setup.chassis.typeName = WxStringFromStdString(ChassisTypeName(setup.chassis.type));
  }
  setup.modelIdentifier = WxStringFromStdString(setup.system.product);
  if (!setup.modelIdentifier.empty()) return;
  // Boards without these tables have a device tree, whose text ends with a NUL.
  const std::string model = files.Text("/proc/device-tree/model");
  setup.modelIdentifier = WxStringFromStdString(model.substr(0, model.find('\0')));
}

}  // namespace Norvik::Machine
