#include "common/inventory/ApplicationsReport.h"

#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <chrono>
#include <locale>
#include <map>
#include <sstream>

#include "common/log/Logger.h"
#include "common/text/Dates.h"

namespace Norvik::Common {

namespace {

using boost::property_tree::ptree;

struct ReportField {
  const char* key;
  std::string SoftwareRegisteredInfo::*member;
};

constexpr ReportField REPORT_FIELDS[] = {{"_name", &SoftwareRegisteredInfo::name},
                                         {"version", &SoftwareRegisteredInfo::version},
                                         {"path", &SoftwareRegisteredInfo::location},
                                         {"path", &SoftwareRegisteredInfo::softwareKey},
                                         {"obtained_from", &SoftwareRegisteredInfo::source},
                                         {"signed_by", &SoftwareRegisteredInfo::signedBy},
                                         {"info", &SoftwareRegisteredInfo::description}};

/// Calls `visit` with each key of a property list's dictionary and the node of its value.
template <class Visit>
void ForEachEntry(const ptree& dictionary, Visit visit) {
  std::string key;
  for (const auto& [tag, node] : dictionary) {
    if (tag == "key") {
      key = node.data();
    } else {
      visit(key, node);
    }
  }
}

/// The text of a value, or of the first element of an array.
std::string TextOf(const ptree& value) {
  return value.empty() ? value.data() : value.front().second.data();
}

/// Reports up to macOS 10.14 say in two other keys which processors an application is for. Its
/// value is the one that later reports have for the same processors.
std::string ArchitectureOf(std::map<std::string, std::string>& values) {
  if (!values["arch_kind"].empty()) return values["arch_kind"];
  if (values["has64BitIntelCode"] == "yes") return "arch_i64";
  const std::string environment = values["runtime_environment"];
  return environment == "arch_x86" ? "arch_i32" : environment;
}

SoftwareRegisteredInfo SoftwareOf(const ptree& dictionary) {
  std::map<std::string, std::string> values;
  ForEachEntry(dictionary, [&](const std::string& key, const ptree& value) {
    values.emplace(key, TextOf(value));
  });
  SoftwareRegisteredInfo software;
  for (const auto& field : REPORT_FIELDS) software.*field.member = values[field.key];
  software.architecture = ArchitectureOf(values);
  const auto modified = UTCStringToTimePoint(values["lastModified"], "%Y-%m-%dT%H:%M:%SZ");
  software.installDate = std::chrono::system_clock::to_time_t(modified);
  software.systemComponent = software.location.rfind("/System/", 0) == 0;
  return software;
}

void AddItems(const ptree& report, std::vector<SoftwareRegisteredInfo>& result) {
  ForEachEntry(report, [&](const std::string& key, const ptree& items) {
    if (key != "_items") return;
    for (const auto& [tag, item] : items) {
      if (tag != "dict") continue;
      SoftwareRegisteredInfo software = SoftwareOf(item);
      if (!software.name.empty()) result.push_back(std::move(software));
    }
  });
}

}  // namespace

std::vector<SoftwareRegisteredInfo> ReadApplicationsReport(const std::string& propertyList) {
  std::vector<SoftwareRegisteredInfo> result;
  std::istringstream stream(propertyList);
  stream.imbue(std::locale::classic());
  ptree tree;
  try {
    read_xml(stream, tree,
             boost::property_tree::xml_parser::no_comments |
                 boost::property_tree::xml_parser::trim_whitespace);
  } catch (const boost::property_tree::xml_parser_error& error) {
    NORVIK_DETAIL("No report of applications: " + error.message());
    return result;
  }
  const auto reports = tree.get_child_optional("plist.array");
  if (!reports) return result;
  for (const auto& [tag, report] : *reports) {
    if (tag == "dict") AddItems(report, result);
  }
  return result;
}

}  // namespace Norvik::Common
