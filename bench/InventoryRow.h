#pragma once

#include <string>

namespace Norvik::Bench {

/// One file of a file inventory, as its table keeps it.
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
