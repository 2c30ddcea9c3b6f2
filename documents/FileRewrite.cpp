#include "documents/FileRewrite.h"

#include <algorithm>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "documents/DocumentError.h"
#include "documents/FileDocument.h"
#include "module/Entities/FileStatus.h"

namespace Norvik::Documents {

namespace {

/// In the order in which a difference has them.
int PlaceOf(int status) {
  return status == KOB::NEW_FILE ? 1 : status == KOB::REMOVED_FILE ? 2 : 3;
}

/// A file as text, and what it is sorted by.
struct Written {
  std::string name;
  std::string extension;
  std::string text;
};

class Rewriter {
 public:
  Rewriter(std::string name, const RewriteFile& rewrite)
      : name_(std::move(name)), rewrite_(rewrite) {}

  /// Takes the files away from the parser, and the folders with them.
  bool Watch(int depth, Json::parse_event_t event, Json& parsed) {
    constexpr int ROOT_KEY = 1;
    constexpr int FOLDER = 2;
    constexpr int FILE_RECORD = 4;
    if (event == Json::parse_event_t::key && depth == ROOT_KEY) isPaths_ = parsed == "paths";
    if (event == Json::parse_event_t::key && depth == FOLDER + 1) isFiles_ = parsed == "files";
    if (event != Json::parse_event_t::object_end || !isPaths_) return true;
    if (depth == FILE_RECORD && isFiles_) pending_.push_back(std::move(parsed));
    if (depth == FOLDER) TakeFolder(parsed);
    return depth != FOLDER && !(depth == FILE_RECORD && isFiles_);
  }

  /// Whether all files are of a document of this type.
  bool HasOnly(bool isTotal) const { return isTotal ? !hasChanges_ : !hasTotal_; }

  /// The folders, which are gone afterwards.
  std::string Text() {
    std::string text = "[";
    for (auto& [place, files] : files_) {
      std::stable_sort(files.begin(), files.end(), [](const Written& left, const Written& right) {
        return std::tie(left.name, left.extension) < std::tie(right.name, right.extension);
      });
      text += text.size() == 1 ? "{\"files\":[" : ",{\"files\":[";
      for (const Written& file : files) {
        text += file.text;
        text += ',';
      }
      text.back() = ']';
      text += ",\"pathName\":" + TextOf(place.second) + "}";
      std::vector<Written>().swap(files);
    }
    return text + "]";
  }

 private:
  void TakeFolder(Json& folder) {
    folder["files"] = std::exchange(pending_, Json::array());
    const Json& files = folder["files"];
    const bool isTotal = files.empty() || !files[0].is_object() ||
                         files[0].value("fileStatus", Json()) == KOB::WHOLE_INVENTORY;
    if (!files.empty()) (isTotal ? hasTotal_ : hasChanges_) = true;
    Document single{name_, {{"device", Json::object()}, {"typeInventory", isTotal ? 0 : 1}}};
    single.value["paths"].push_back(std::move(folder));
    CheckDocument(single, isTotal ? CheckFullFileDocument : CheckIncrementalFileDocument);
    Json& taken = single.value["paths"][0];
    for (Json& file : taken["files"]) Take(taken["pathName"], file);
  }

  void Take(std::string path, Json& file) {
    rewrite_(path, file);
    files_[{PlaceOf(file["fileStatus"]), std::move(path)}].push_back(
        {file["filename"], file["extension"], TextOf(file)});
  }

  const std::string name_;
  const RewriteFile& rewrite_;
  Json pending_ = Json::array();  ///< files of a folder that has not ended
  bool isPaths_ = false;
  bool isFiles_ = false;
  bool hasTotal_ = false;
  bool hasChanges_ = false;
  std::map<std::pair<int, std::string>, std::vector<Written>> files_;
};

}  // namespace

std::string RewriteFileDocument(const NamedText& document, const RewriteFile& rewriteFile,
                                const std::function<void(Json&)>& rewriteRest) {
  Rewriter files(document.name, rewriteFile);
  Document rest = ParseDocument(document, [&](int depth, Json::parse_event_t event, Json& parsed) {
    return files.Watch(depth, event, parsed);
  });
  const bool isTotal = rest.value.is_object() && rest.value.value("typeInventory", Json()) == 0;
  CheckDocument(rest, isTotal ? CheckFullFileDocument : CheckIncrementalFileDocument);
  if (!files.HasOnly(isTotal)) {
    throw DocumentError(document.name + ": a file has a state of another type of document");
  }
  rewriteRest(rest.value);
  std::string text;
  for (const auto& [key, value] : rest.value.items()) {
    text += (text.empty() ? "{" : ",") + TextOf(key) + ":";
    text += key == "paths" ? files.Text() : TextOf(value);
  }
  return text + "}";
}

}  // namespace Norvik::Documents
