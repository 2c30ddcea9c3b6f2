#include "forge/agents/UploadSource.h"

#include <sodium.h>

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <cstdio>
#include <limits>
#include <stdexcept>

#include "common/files/TextFile.h"
#include "documents/DocumentText.h"
#include "forge/DocumentsCommand.h"

namespace Norvik::Forge {

namespace fs = boost::filesystem;

namespace {

Upload UploadOf(std::string name, std::string bytes) {
  unsigned char digest[crypto_hash_sha256_BYTES];
  crypto_hash_sha256(digest, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
  char text[2 * sizeof(digest) + 1];
  sodium_bin2hex(text, sizeof(text), digest, sizeof(digest));
  return {std::move(name), std::move(bytes), text};
}

std::string FileName(const Mac& mac, bool isFileInventory) {
  return mac.HostName() + (isFileInventory ? ".rud.jsonrud" : ".jsonkob");
}

}  // namespace

UploadSource::UploadSource(const AgentsOptions& options, const Profiles& profiles)
    : options_(options), profiles_(profiles) {
  if (!options.keys.empty()) sealer_ = std::make_unique<DocumentSealer>(options.keys);
  if (!options.documents.empty() && !fs::is_directory(options.documents)) {
    throw std::runtime_error(options.documents + " is no folder");
  }
}

void UploadSource::Prepare() {
  const FleetOptions& fleet = options_.fleet;
  for (unsigned int i = 0; i < fleet.macs; ++i) {
    const Mac mac(profiles_, fleet.seed, fleet.first + i, fleet.start);
    MacDocuments documents(mac, fleet.files);
    for (int day = 0; day < fleet.days; ++day) {
      for (const MadeDocument& document : documents.Next(day)) {
        prepared_[{mac.Number(), day}].push_back(Sealed(document, mac));
      }
    }
  }
}

std::vector<Upload> UploadSource::For(const Mac& mac, int day) {
  if (options_.onlyTasks) return {};
  if (!options_.documents.empty()) return Read(mac, day);
  if (!options_.prepare) return Made(mac, day);
  const auto found = prepared_.find({mac.Number(), day});
  if (found == prepared_.end()) return {};
  std::vector<Upload> uploads = std::move(found->second);
  prepared_.erase(found);
  return uploads;
}

std::vector<Upload> UploadSource::Full(const Mac& mac, int day, MadeDocument::Kind kind) {
  if (!sealer_) return {};
  const bool files = kind == MadeDocument::FileInventory;
  if (files && options_.fleet.files == 0) return {};
  const Json document = files ? mac.Files(day, options_.fleet.files) : mac.Inventory(day);
  return {Sealed({day, kind, Documents::TextOf(document)}, mac)};
}

std::vector<Upload> UploadSource::Made(const Mac& mac, int day) const {
  MacDocuments documents(mac, options_.fleet.files);
  int before = day - 1;
  while (before > 0 && !mac.IsUsed(before)) --before;
  if (before >= 0) documents.Begin(before);
  std::vector<Upload> uploads;
  for (const MadeDocument& document : documents.Next(day)) {
    uploads.push_back(Sealed(document, mac));
  }
  return uploads;
}

std::vector<Upload> UploadSource::Read(const Mac& mac, int day) const {
  std::vector<fs::path> files;
  const fs::path folder = fs::path(options_.documents) / FolderOf(mac);
  if (!fs::is_directory(folder)) throw std::runtime_error(folder.string() + " is no folder");
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.path().filename().string().rfind(DayPrefix(day), 0) == 0) {
      files.push_back(entry.path());
    }
  }
  std::sort(files.begin(), files.end());
  std::vector<Upload> uploads;
  for (const fs::path& file : files) {
    if (file.extension() == ".json") {
      throw std::runtime_error(file.string() + " is not sealed; see documents --sealed");
    }
    uploads.push_back(
        UploadOf(FileName(mac, file.extension() == ".jsonrud"),
                 Common::ReadTextFile(file, std::numeric_limits<std::size_t>::max())));
  }
  return uploads;
}

Upload UploadSource::Sealed(const MadeDocument& document, const Mac& mac) const {
  return UploadOf(FileName(mac, document.kind == MadeDocument::FileInventory),
                  sealer_->Sealed(document, mac.HostName()));
}

}  // namespace Norvik::Forge
