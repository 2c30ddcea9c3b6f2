#pragma once

#include <cstdint>
#include <ctime>
#include <string>

#include "common/records/InventoryRecord.h"

namespace Norvik::Common {

/// An installed program or package.
struct NORVIK_COMMON_API SoftwareRegisteredInfo final : InventoryRecord<SoftwareRegisteredInfo> {
  SoftwareRegisteredInfo() = default;
  explicit SoftwareRegisteredInfo(const ptree& node) { Read(node); }

  bool isPatch = false;
  std::string name;
  std::string uninstallCommand;
  std::time_t installDate = 0;  ///< seconds since the epoch; 0: unknown
  std::string version;
  std::string publisher;
  std::uint64_t sizeBytes = 0;
  std::string productCode;
  std::string language;
  std::string source;
  std::string location;
  std::string architecture;
  std::string category;
  std::string description;
  std::string softwareKey;
  std::string parentKey;
  std::string releaseType;
  std::string url;
  bool systemComponent = false;
  std::string signedBy;

  static constexpr auto Fields() {
    return FieldTable(Field("isPatch", &SoftwareRegisteredInfo::isPatch),
                      Field("name", &SoftwareRegisteredInfo::name),
                      Field("uninstallCommand", &SoftwareRegisteredInfo::uninstallCommand),
                      Date("installDate", &SoftwareRegisteredInfo::installDate),
                      Field("version", &SoftwareRegisteredInfo::version),
                      Field("publisher", &SoftwareRegisteredInfo::publisher),
                      Field("sizeBytes", &SoftwareRegisteredInfo::sizeBytes),
                      Field("productCode", &SoftwareRegisteredInfo::productCode),
                      Field("language", &SoftwareRegisteredInfo::language),
                      Field("source", &SoftwareRegisteredInfo::source),
                      Field("location", &SoftwareRegisteredInfo::location),
                      Field("architecture", &SoftwareRegisteredInfo::architecture),
                      Field("category", &SoftwareRegisteredInfo::category),
                      Field("description", &SoftwareRegisteredInfo::description),
                      Field("softwareKey", &SoftwareRegisteredInfo::softwareKey),
                      Field("parentKey", &SoftwareRegisteredInfo::parentKey),
                      Field("releaseType", &SoftwareRegisteredInfo::releaseType),
                      Field("url", &SoftwareRegisteredInfo::url),
                      Field("systemComponent", &SoftwareRegisteredInfo::systemComponent),
                      Field("signedBy", &SoftwareRegisteredInfo::signedBy));
  }
  /// Without the version: an upgrade updates the record.
  static constexpr auto Key() {
    return std::make_tuple(&SoftwareRegisteredInfo::name, &SoftwareRegisteredInfo::productCode,
                           &SoftwareRegisteredInfo::softwareKey);
  }
  static constexpr auto Kept() {
    return FieldTable(Field("name", &SoftwareRegisteredInfo::name),
                      Field("productCode", &SoftwareRegisteredInfo::productCode),
                      Field("softwareKey", &SoftwareRegisteredInfo::softwareKey),
                      Field("version", &SoftwareRegisteredInfo::version));
  }
};

}  // namespace Norvik::Common
