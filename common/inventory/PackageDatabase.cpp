#include "common/inventory/PackageDatabase.h"

#include <charconv>
#include <cstdint>
#include <limits>
#include <map>

#include "common/text/Text.h"

namespace Norvik::Common {

namespace {

using Stanza = std::map<std::string, std::string>;

struct PackageField {
  const char* name;
  std::string SoftwareRegisteredInfo::*member;
};

constexpr PackageField PACKAGE_FIELDS[] = {{"Package", &SoftwareRegisteredInfo::name},
                                           {"Package", &SoftwareRegisteredInfo::productCode},
                                           {"Version", &SoftwareRegisteredInfo::version},
                                           {"Maintainer", &SoftwareRegisteredInfo::publisher},
                                           {"Architecture", &SoftwareRegisteredInfo::architecture},
                                           {"Source", &SoftwareRegisteredInfo::source},
                                           {"Description", &SoftwareRegisteredInfo::description},
                                           {"Section", &SoftwareRegisteredInfo::category},
                                           {"Homepage", &SoftwareRegisteredInfo::url}};

std::string ValueOf(const Stanza& stanza, const char* name) {
  const auto found = stanza.find(name);
  return found == stanza.end() ? std::string() : found->second;
}

/// Adds a line to the stanza. Only the first line of a field counts here.
void AddLine(const std::string& line, Stanza& stanza) {
  const auto colon = line.find(':');
  if (colon == std::string::npos || line[0] == ' ' || line[0] == '\t') return;
  stanza.emplace(line.substr(0, colon), trim_copy(line.substr(colon + 1)));
}

/// By the third word of the status, which is the present state.
bool IsInstalled(const Stanza& stanza) {
  const std::string status = ValueOf(stanza, "Status");
  return status.substr(status.rfind(' ') + 1) == "installed";
}

std::uint64_t BytesOf(const std::string& kibibytes) {
  std::uint64_t number = 0;
  std::from_chars(kibibytes.data(), kibibytes.data() + kibibytes.size(), number);
  return number > std::numeric_limits<std::uint64_t>::max() / 1024 ? 0 : number * 1024;
}

SoftwareRegisteredInfo SoftwareOf(const Stanza& stanza, const PackageDate& date) {
  SoftwareRegisteredInfo software;
  for (const auto& field : PACKAGE_FIELDS) software.*field.member = ValueOf(stanza, field.name);
  software.softwareKey = software.name + ":" + software.architecture;
  software.sizeBytes = BytesOf(ValueOf(stanza, "Installed-Size"));
  software.systemComponent = ValueOf(stanza, "Essential") == "yes";
  software.installDate = date(software.name, software.architecture);
  return software;
}

}  // namespace

std::vector<SoftwareRegisteredInfo> ReadPackageStatus(std::istream& status,
                                                      const PackageDate& date) {
  std::vector<SoftwareRegisteredInfo> packages;
  Stanza stanza;
  const auto finish = [&] {
    if (stanza.count("Package") != 0 && IsInstalled(stanza)) {
      packages.push_back(SoftwareOf(stanza, date));
    }
    stanza.clear();
  };
  for (std::string line; std::getline(status, line);) {
    if (trim_copy(line).empty()) {
      finish();
    } else {
      AddLine(line, stanza);
    }
  }
  finish();
  return packages;
}

}  // namespace Norvik::Common
