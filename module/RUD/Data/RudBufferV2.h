#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "module/RUD/Data/RudFileInfo.h"

namespace Norvik::KOB::V2 {

/// The result of one scan of the disk, until it is stored. Paths, extensions and companies are kept
/// once each, under ids of this buffer. A copy is deep. Use it on one thread.
class RudBuffer {
 public:
  using Ids = std::unordered_map<std::string, std::uint32_t>;

  /// @param capacity number of files and of paths to reserve memory for; not a limit
  explicit RudBuffer(unsigned long capacity);

  /// @param file not one of this buffer
  void Insert(const RudFileInfo& file) {
    // Grows fourfold, as each growth moves all files into fresh memory.
    if (files_.size() == files_.capacity()) files_.reserve(files_.size() * 4 + 1);
    files_.push_back(file);
  }

  std::vector<RudFileInfo>& GetBufferFile() { return files_; }
  Ids& GetBufferExtension() { return extensions_; }
  Ids& GetBufferPath() { return paths_; }
  /// Always holds the empty company, under the id 0.
  Ids& GetBufferCompany() { return companies_; }

  /// Adds the key under a new id, which also replaces the id of a key that is there already.
  std::uint32_t AddExtension(const std::string& extension);
  /// Throws `std::out_of_range` for a key that was never added.
  std::uint32_t GetIdExtension(const std::string& extension) const;
  // The id of the key, which is added if it is not there yet.
  std::uint32_t AddParentPath(const std::string& path);
  std::uint32_t AddCompanyName(const std::string& company);

 private:
  std::vector<RudFileInfo> files_;
  Ids extensions_;
  Ids paths_;
  Ids companies_{{"", 0}};
  std::uint32_t nextExtensionId_ = 1;
  std::uint32_t nextPathId_ = 1;
  std::uint32_t nextCompanyId_ = 1;
};

}  // namespace Norvik::KOB::V2
