#include "module/RUD/Data/RudBufferV2.h"

namespace Norvik::KOB::V2 {

namespace {

std::uint32_t IdOf(const std::string& key, RudBuffer::Ids& ids, std::uint32_t& nextId) {
  const auto [place, isNew] = ids.try_emplace(key, nextId);
  if (isNew) ++nextId;
  return place->second;
}

}  // namespace

RudBuffer::RudBuffer(unsigned long capacity) {
  files_.reserve(capacity);
  paths_.reserve(capacity);
}

std::uint32_t RudBuffer::AddExtension(const std::string& extension) {
  // Deliberately without a search for the key: two configured spellings share the last one's id.
  return extensions_[extension] = nextExtensionId_++;
}

std::uint32_t RudBuffer::GetIdExtension(const std::string& extension) const {
  return extensions_.at(extension);
}

std::uint32_t RudBuffer::AddParentPath(const std::string& path) {
  return IdOf(path, paths_, nextPathId_);
}

std::uint32_t RudBuffer::AddCompanyName(const std::string& company) {
  return IdOf(company, companies_, nextCompanyId_);
}

}  // namespace Norvik::KOB::V2
