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

/// The first node with this name, starting at `node` and going on with `next`. Logs each node that
/// it skips. Null if there is no such node.
template <class Next>
const wxXmlNode* FindNode(const wxXmlNode* node, const char* name, Next next) {
  while (node && node->GetName() != name) {
    NORVIK_INFORMATION(Common::ToUtf8(node->GetName()));
    node = next(*node);
  }
  return node;
}

/// The devices of the first bus. Deliberately null if the first array of the report is a different
/// one, such as the arguments of its command: the server expects no devices from such a report.
const wxXmlNode* DevicesOf(const wxXmlNode* root) {
  const auto down = [](const wxXmlNode& node) { return node.GetChildren(); };
  const auto on = [](const wxXmlNode& node) { return node.GetNext(); };
  const wxXmlNode* node = FindNode(root, "key", down);
  node = FindNode(node, "array", on);
  node = FindNode(node, "key", down);
  return FindNode(node, "array", on);
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

/// The report. Not `IsOk` without a report or if it nests too deep for the library, which destroys
/// a tree recursively.
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
