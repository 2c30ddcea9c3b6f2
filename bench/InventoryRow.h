#pragma once

#include <string>

namespace Norvik::Bench {

/// One row of the table of a file inventory.
struct InventoryRow {
  unsigned int pathId;
  unsigned int extensionId;
  long long size;
  long long lastModification;
  std::string fileName;
  std::string absolutePath;
  std::string productName;
  std::string version;
  int isExecutable;
  unsigned int companyId;
  std::string description;
  int state;
  std::string fileVersion;
};

}  // namespace Norvik::Bench
