#include "documents/FileChanges.h"

#include <algorithm>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "documents/DocumentError.h"
#include "documents/FileDocument.h"
#include "documents/Matching.h"
#include "module/Entities/FileStatus.h"

namespace Norvik::Documents {

namespace {

/// Folder, name and extension of a file.
using FileKey = std::tuple<std::string, std::string, std::string>;
/// Several files may share a key, since documents hold extensions in upper case.
using Files = std::multimap<FileKey, Json>;

std::string TextOf(const FileKey& key) {
  const auto& [folder, name, extension] = key;
  return Json(folder + "/" + name + "." + extension).dump();
}

Files FilesOf(Json& document) {
  Files files;
  for (Json& folder : document["paths"]) {
    const auto& path = folder["pathName"].get_ref<const std::string&>();
    for (Json& file : folder["files"]) {
      FileKey key{path, file["filename"].get<std::string>(), file["extension"].get<std::string>()};
      files.emplace(std::move(key), std::move(file));
    }
  }
  return files;
}

void AddFile(Json& folders, const FileKey& key, Json file, KOB::FileStatus status) {
  const std::string& path = std::get<0>(key);
  if (folders.empty() || folders.back()["pathName"] != path) {
    folders.push_back({{"files", Json::array()}, {"pathName", path}});
  }
  file["fileStatus"] = static_cast<int>(status);
  folders.back()["files"].push_back(std::move(file));
}

/// The files of a document while changes are applied to them.
class ChangedFiles {
 public:
  explicit ChangedFiles(Files files) : files_(std::move(files)) {}

  void Remove(const FileKey& key, Json file) {
    const auto [first, last] = files_.equal_range(key);
    if (first == last) ThrowMisfit("removes a file that is not there", key);
    file["fileStatus"] = KOB::WHOLE_INVENTORY;
    const auto isSame = [&](const auto& item) { return item.second == file; };
    const auto same = std::find_if(first, last, isSame);
    files_.erase(same == last ? first : same);
  }
  void Modify(const FileKey& key, Json file) {
    const auto first = files_.lower_bound(key);
    if (first == files_.end() || first->first != key) {
      ThrowMisfit("modifies a file that is not there", key);
    }
    first->second = std::move(file);
    first->second["fileStatus"] = KOB::WHOLE_INVENTORY;
  }
  /// Several of one key may be created at once, but none whose key exists.
  void Create(Files created) {
    for (const auto& [key, file] : created) {
      if (files_.count(key) != 0) ThrowMisfit("creates what is there", key);
    }
    files_.merge(std::move(created));
  }

  Json Folders() && {
    Json folders = Json::array();
    for (auto& [key, file] : files_) AddFile(folders, key, std::move(file), KOB::WHOLE_INVENTORY);
    return folders;
  }

 private:
  [[noreturn]] static void ThrowMisfit(const char* what, const FileKey& key) {
    throw DocumentError("it " + std::string(what) + ": " + TextOf(key));
  }

  Files files_;
};

long long TimeOf(const Json& file) { return file.value("lastMod", 0LL); }

/// The folders of a difference, by the state of their files.
struct Differences {
  Json created = Json::array();
  Json removed = Json::array();
  Json modified = Json::array();
};

/// The files of one key in both documents.
struct Versions {
  std::vector<Json> old;
  std::vector<Json> now;
};

bool HaveSameTimes(const Versions& files) {
  return std::equal(
      files.old.begin(), files.old.end(), files.now.begin(), files.now.end(),
      [](const Json& left, const Json& right) { return TimeOf(left) == TimeOf(right); });
}

void Compare(const FileKey& key, Versions& files, Differences& differences) {
  if (HaveSameTimes(files)) return;
  if (files.old.size() == 1 && files.now.size() == 1) {
    AddFile(differences.modified, key, std::move(files.now.front()), KOB::MODIFIED_FILE);
    return;
  }
  // Where several share a key, only a removal identifies its file, by the values that it holds.
  for (Json& file : files.old)
    AddFile(differences.removed, key, std::move(file), KOB::REMOVED_FILE);
  for (Json& file : files.now) AddFile(differences.created, key, std::move(file), KOB::NEW_FILE);
}

std::map<FileKey, Versions> VersionsOf(Files&& before, Files&& after) {
  std::map<FileKey, Versions> versions;
  for (auto& [key, file] : before) versions[key].old.push_back(std::move(file));
  for (auto& [key, file] : after) versions[key].now.push_back(std::move(file));
  return versions;
}

}  // namespace

void ApplyToFiles(Json& document, Json changes) {
  CheckSameMachine(document, changes);
  ChangedFiles files(FilesOf(document));
  Files changed = FilesOf(changes);
  // Removals first: a file that was renamed in the case of its extension only is removed and
  // created under one key.
  for (auto& [key, file] : changed) {
    if (file["fileStatus"] == KOB::REMOVED_FILE) files.Remove(key, std::move(file));
  }
  Files created;
  for (auto& [key, file] : changed) {
    if (file["fileStatus"] == KOB::MODIFIED_FILE)
      files.Modify(key, std::move(file));
    else if (file["fileStatus"] == KOB::NEW_FILE)
      created.emplace(key, std::move(file));
  }
  files.Create(std::move(created));
  document["paths"] = std::move(files).Folders();
  document["device"] = std::move(changes["device"]);
}

Json FileDifference(Json before, Json after) {
  Differences differences;
  for (auto& [key, files] : VersionsOf(FilesOf(before), FilesOf(after))) {
    Compare(key, files, differences);
  }
  Json folders = Json::array();
  for (Json* state : {&differences.created, &differences.removed, &differences.modified}) {
    for (Json& folder : *state) folders.push_back(std::move(folder));
  }
  if (folders.empty()) return {};
  return {{"device", after["device"]}, {"paths", std::move(folders)}, {"typeInventory", 1}};
}

}  // namespace Norvik::Documents
