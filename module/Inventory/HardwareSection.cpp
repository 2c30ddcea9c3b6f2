#include "module/Inventory/HardwareSection.h"

#include <wx/log.h>
#include <wx/xml/xml.h>

#include "common/apple/XmlReader.h"
#include "common/log/Logger.h"
#include "common/text/Text.h"
#include "module/Inventory/ToolOutput.h"

namespace Norvik::KOB {

namespace {

constexpr char USB_REPORT_COMMAND[] = "system_profiler -xml SPUSBDataType>temp";
constexpr char REPORT_FILE[] = "temp";

struct HardwareField {
  const char* key;
  wxString HardwareInfo::*member;
};
constexpr HardwareField FIELDS[] = {{"_name", &HardwareInfo::name},
                                    {"f_manufacturer", &HardwareInfo::manufacturer},
                                    {"g_location_id", &HardwareInfo::pnpDeviceId}};

/// The nearest node of a name, from a node on; each node that is left is logged. Null if there is
/// none.
template <class Next>
const wxXmlNode* Walk(const wxXmlNode* node, const char* name, Next next) {
  while (node && node->GetName() != name) {
    NORVIK_INFORMATION(Common::ToUtf8(node->GetName()));
    node = next(*node);
  }
  return node;
}

/// The devices of the first bus. Null in a report whose first array is another one, as the words of
/// its command: deliberately, the server expects no devices out of such a report.
const wxXmlNode* DevicesOf(const wxXmlNode* root) {
  const auto down = [](const wxXmlNode& node) { return node.GetChildren(); };
  const auto on = [](const wxXmlNode& node) { return node.GetNext(); };
  const wxXmlNode* node = Walk(root, "key", down);
  node = Walk(node, "array", on);
  node = Walk(node, "key", down);
  return Walk(node, "array", on);
}

wxString TextOf(const wxXmlNode* element) {
  const wxXmlNode* const text = element ? element->GetChildren() : nullptr;
  return text ? text->GetContent() : wxString();
}

HardwareInfo HardwareFrom(const wxXmlNode& device) {
  HardwareInfo hardware;
  for (const wxXmlNode* node = device.GetChildren(); node; node = node->GetNext()) {
    if (node->GetName() != "key") continue;
    const wxString key = TextOf(node);
    for (const HardwareField& field : FIELDS) {
      if (key == field.key) hardware.*field.member = TextOf(node->GetNext());
    }
  }
  return hardware;
}

/// The report; not `IsOk` if there is none, or none that the library can bear: it takes a tree
/// apart by recursion.
wxXmlDocument ReadReport() {
  const wxLogNull quiet;
  if (!Common::IsReadableXml(ReadToolFile(REPORT_FILE))) return {};
  return wxXmlDocument(REPORT_FILE, "UTF-8");
}

}  // namespace

void HardwareSection::GetInfo(std::list<HardwareInfo>& result) {
  NORVIK_SCOPE();
  RunToFile(USB_REPORT_COMMAND);
  const wxXmlDocument report = ReadReport();
  if (!report.IsOk()) {
    NORVIK_ERROR("Attempt to read SPUSBDataType failed");
    return;
  }
  const wxXmlNode* const devices = DevicesOf(report.GetRoot());
  if (!devices) return;
  for (const wxXmlNode* device = devices->GetChildren(); device; device = device->GetNext()) {
    result.push_back(HardwareFrom(*device));
  }
}

}  // namespace Norvik::KOB
