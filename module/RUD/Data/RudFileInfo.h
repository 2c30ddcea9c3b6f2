#pragma once

#include <cstdint>
#include <string>
#include <type_traits>

#include "module/RUD/Data/Rare.h"

/// Version details that a file holds, on systems whose files have them.
struct RudFileDetails {
  std::string productName;
  std::string version;  ///< of the product
  std::string fileVersion;
  std::string companyName;
  std::string fileDescription;
};

/// One file of a scan. Ids are valid within one `RudBuffer` only.
struct RudFileInfo {
  std::uint32_t pathId = 0;
  std::uint32_t extensionId = 0;
  std::uint32_t companyId = 0;        ///< 0: no company
  std::int64_t lastModification = 0;  ///< milliseconds since the epoch; -1: could not be read
  std::int64_t size = 0;              ///< bytes; 0 also if it could not be read
  bool isExecutable = false;
  std::string fileName;  ///< without its extension
  std::string absolutePath;
  Norvik::KOB::V2::Rare<RudFileDetails> details;
};

// Otherwise a growing vector would copy every file.
static_assert(std::is_nothrow_move_constructible_v<RudFileInfo>);
