#include "module/Inventory/CSharedResourcesSection.h"

#include <boost/algorithm/string/erase.hpp>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/replace.hpp>
#include <boost/format.hpp>
#include <sstream>
#include <utility>

#include "common/log/Logger.h"
#include "common/text/Text.h"
#include "module/Inventory/ToolOutput.h"

namespace Norvik::KOB {

namespace {

using Common::WxStringFromStdString;

constexpr char LIST_COMMAND[] = "rm /tmp/shareList;dscl . -list  /SharePoints > /tmp/shareList";
constexpr char PROPERTIES_COMMAND[] =
    R"(rm /tmp/propertyShare;dscl . -read "/SharePoints/%s" > /tmp/propertyShare)";
constexpr char LIST_FILE[] = "/tmp/shareList";
constexpr char PROPERTIES_FILE[] = "/tmp/propertyShare";

/// Whether a line of the list is a complaint: `dscl` prints some of them on its output.
bool IsComplaint(const std::string& line) {
  using boost::algorithm::ends_with;
  using boost::algorithm::starts_with;
  return line == "list: Invalid Path" || starts_with(line, "<dscl_cmd> DS Error: ") ||
         (starts_with(line, "Data source (") && ends_with(line, ") is not valid."));
}

struct Attribute {
  const char* label;
  wxString SharedResourceInfo::*member;
};
constexpr Attribute ATTRIBUTES[] = {
    {"dsAttrTypeNative:directory_path:", &SharedResourceInfo::path},
    {"RecordName:", &SharedResourceInfo::description},
};

void ReadProperty(const std::string& line, SharedResourceInfo& share) {
  for (const auto& [label, member] : ATTRIBUTES) {
    if (line.find(label) == std::string::npos) continue;
    // Deliberately keeps the space after the label: the server expects it in paths.
    share.*member = WxStringFromStdString(boost::algorithm::erase_first_copy(line, label));
    return;
  }
}

void ReadProperties(std::string properties, SharedResourceInfo& share) {
  // A value that is long or contains a space is on the line after its attribute.
  boost::algorithm::replace_all(properties, ":\n", ":");
  std::istringstream stream(properties);
  for (std::string line; std::getline(stream, line);) ReadProperty(line, share);
}

std::string ReadPropertiesOf(const std::string& name) {
  // Deliberately without escaping the name for the shell: the command line is fixed.
  RunToFile((boost::format(PROPERTIES_COMMAND) % name).str());
  return ReadToolFile(PROPERTIES_FILE);
}

}  // namespace

std::list<SharedResourceInfo> ReadShares(const std::string& names,
                                         const PropertiesOfShare& propertiesOf) {
  std::list<SharedResourceInfo> shares;
  std::istringstream stream(names);
  for (std::string line; std::getline(stream, line);) {
    if (IsComplaint(line)) continue;
    SharedResourceInfo share;
    share.name = WxStringFromStdString(line);
    ReadProperties(propertiesOf(line), share);
    if (share.name.empty()) continue;
    share.type = "Shared Folder";
    // Deliberately this text and not a folder: the server shows it.
    if (share.path.empty()) share.path = "$HOME";
    shares.push_back(std::move(share));
  }
  return shares;
}

void CSharedResourcesSection::GetInfo(std::list<SharedResourceInfo>& result) {
  NORVIK_SCOPE();
  RunToFile(LIST_COMMAND);
  result.splice(result.end(), ReadShares(ReadToolFile(LIST_FILE), ReadPropertiesOf));
}

}  // namespace Norvik::KOB
