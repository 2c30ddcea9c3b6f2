#include "common/text/Text.h"
#include "machine/SmbiosFacts.h"
#include "machine/apple/GatherFromMac.h"
#include "machine/apple/Registry.h"

namespace Norvik::Machine::Mac {

namespace {

using namespace Common;

/// A property of the platform's device. Its texts are stored as data that ends with a NUL.
std::string ExpertText(const char* property) {
  const std::string bytes = RegistryProperty("IOPlatformExpertDevice", property);
  return trim_copy(EncodeUtf8Characters(bytes.substr(0, bytes.find('\0'))));
}

void Complete(std::string& text, const char* property) {
  if (text.empty()) text = ExpertText(property);
}

}  // namespace

std::shared_ptr<SmBios> ReadSmBios() {
  return MakeSmBios(RegistryProperty("AppleSMBIOS", "SMBIOS-EPS"),
                    RegistryProperty("AppleSMBIOS", "SMBIOS"));
}

void CompleteSetup(SetupInfo& setup) {
  Complete(setup.system.manufacturer, "manufacturer");
  Complete(setup.system.product, "model");
  Complete(setup.system.version, "version");
  Complete(setup.system.serial, "IOPlatformSerialNumber");
  Complete(setup.baseboard.manufacturer, "manufacturer");
  Complete(setup.baseboard.product, "board-id");
  Complete(setup.chassis.manufacturer, "manufacturer");
  if (setup.system.uuid.empty()) {
    setup.system.uuid = WxStringFromStdString(ExpertText("IOPlatformUUID"));
  }
  setup.modelIdentifier = WxStringFromStdString(ExpertText("model"));
}

}  // namespace Norvik::Machine::Mac
