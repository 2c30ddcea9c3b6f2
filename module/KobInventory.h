#pragma once

#include <boost/filesystem/path.hpp>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "common/configuration/CommunicationsInfo.h"
#include "common/configuration/KobConfigurationInfo.h"
#include "common/progress/ProgressListener.h"
#include "module/DeviceIdentifiers.h"
#include "module/Entities/InventoryKOBInfo.h"
#include "module/Entities/SystemInfo.h"
#include "module/SectionFactory.h"

namespace Norvik::KOB {

/// One machine inventory: gathers every section, writes the document, and leaves it compressed and
/// encrypted in the outbox. An object serves one run. Runs must not overlap: their files have fixed
/// names.
class KobInventory {
 public:
  /// Gathers the sections that others need. Throws what their collectors throw, and
  /// `std::bad_weak_ptr` if the identification no longer exists.
  KobInventory(std::weak_ptr<Common::IDataBase> dataBase,
               std::weak_ptr<Common::IIdentificationSystem> identification,
               const Common::KobConfigurationInfo& configuration,
               const Common::CommunicationsInfo& communications, unsigned int profileId);

  /// Runs the inventory. Returns nothing: what goes wrong is logged. An incremental one becomes a
  /// total one if there is nothing to compare with, if the comparison fails, and if it finds no
  /// change. The last full document is kept for the next comparison in every case.
  void GenerateInventory(bool incremental);

 private:
  using Path = boost::filesystem::path;
  using InventoryPointer = std::unique_ptr<InventoryKOBInfo>;
  struct Files;

  void InitializeMainSections();
  InventoryPointer GenerateInventoryKOB();

  bool ProcessInventoryData(const Path& document, const InventoryPointer& inventory);
  /// Whether the document of the changes was written; if not, `whyTotal_` holds the reason.
  bool CompareWithPrevious(const Files& files, InventoryPointer inventory);
  bool CheckJsonFile(const Path& file);
  InventoryPointer GenerateIncrementalInventoryData(const std::string& previousDocument,
                                                    InventoryPointer inventory);
  bool ProcessIncrementalInventoryData(const Path& document, const InventoryPointer& inventory);
  void WriteJsonFile(const Common::ISerializerJson& record, const Path& file);
  void RenameIncrementalJsonFile(const Path& from, const Path& to) const;
  void Deliver(const Files& files, bool incremental) const;

  /// Asks a section for its facts. A section that the factory cannot make gives the default.
  /// @param keys those of the document that the facts fill
  template <class Result>
  Result Retrieve(Common::SectionKeys keys, const char* description,
                  SectionFactory::Section<Result> (SectionFactory::*section)() const);
  ConfigurationInfo GetConfigurationInfo();
  const DeviceInfo& GetDeviceInfo();
  std::vector<FeaturesInfo> GetFeatureInfo();
  GeoLocationPoint GetGeoLocationInfo();
  LocalUserInfo GetLocalUsersInfo();
  std::vector<Common::SoftwareRegisteredInfo> GetSoftwareRegisteredInfo();
  void GetOperatingSystemType();

  std::weak_ptr<Common::IDataBase> dataBase_;
  std::weak_ptr<Common::IIdentificationSystem> identification_;
  Common::KobConfigurationInfo configuration_;
  Common::CommunicationsInfo communications_;
  unsigned int profileId_;
  Common::SetupInfo setup_;
  Common::OperatingSystemInfo operatingSystem_;
  SystemInfo system_;
  DeviceInfo device_;
  Common::MemoryInfo memory_;
  std::list<Common::NetworkAdapterInfo> networkAdapters_;
  std::unique_ptr<SectionFactory> sectionFactory_;
  std::list<LocalUserInfo> localUsers_;
  bool hasChanges_ = false;  ///< an incremental run has written a document of changes
  std::string whyTotal_;     ///< why a total inventory is sent in place of an incremental one
  IdentifierInfo identifier_;
};

}  // namespace Norvik::KOB
