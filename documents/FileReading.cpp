#include "documents/FileReading.h"

#include <utility>

#include "documents/DocumentError.h"
#include "documents/FileDocument.h"
#include "module/Entities/FileStatus.h"

namespace Norvik::Documents {

namespace {

class FolderReader {
 public:
  explicit FolderReader(const TakeFolder& take) : take_(take) {}

  /// Takes the files away from the parser, and the folders with them.
  bool Watch(int depth, Json::parse_event_t event, Json& parsed) {
    constexpr int ROOT_KEY = 1;
    constexpr int FOLDER = 2;
    constexpr int FILE_RECORD = 4;
    if (event == Json::parse_event_t::key && depth == ROOT_KEY) isPaths_ = parsed == "paths";
    if (event == Json::parse_event_t::key && depth == FOLDER + 1) isFiles_ = parsed == "files";
    if (event != Json::parse_event_t::object_end || !isPaths_) return true;
    if (depth == FILE_RECORD && isFiles_) pending_.push_back(std::move(parsed));
    if (depth == FOLDER) Take(parsed);
    return depth != FOLDER && !(depth == FILE_RECORD && isFiles_);
  }

  /// Whether all files are of a document of this type.
  bool HasOnly(bool isTotal) const { return isTotal ? !hasChanges_ : !hasTotal_; }

 private:
  void Take(Json& folder) {
    folder["files"] = std::exchange(pending_, Json::array());
    const Json& files = folder["files"];
    const bool isTotal = files.empty() || !files[0].is_object() ||
                         files[0].value("fileStatus", Json()) == KOB::WHOLE_INVENTORY;
    if (!files.empty()) (isTotal ? hasTotal_ : hasChanges_) = true;
    Json single = {{"device", Json::object()}, {"typeInventory", isTotal ? 0 : 1}};
    single["paths"].push_back(std::move(folder));
    (isTotal ? CheckFullFileDocument : CheckIncrementalFileDocument)(single);
    take_(single["paths"][0]);
  }

  const TakeFolder& take_;
  Json pending_ = Json::array();  ///< files of a folder that has not ended
  bool isPaths_ = false;
  bool isFiles_ = false;
  bool hasTotal_ = false;
  bool hasChanges_ = false;
};

}  // namespace

bool IsFileDocumentText(const std::string& text) {
  static constexpr char KEY[] = "\"typeInventory\"";
  for (auto at = text.find(KEY); at != std::string::npos; at = text.find(KEY, at + 1)) {
    const auto next = text.find_first_not_of(" \t\r\n", at + sizeof(KEY) - 1);
    if (next != std::string::npos && text[next] == ':') return true;
  }
  return false;
}

Document ReadFileDocument(const NamedText& document, const TakeFolder& take) {
  FolderReader folders(take);
  Document rest = ParseDocument(document, [&](int depth, Json::parse_event_t event, Json& parsed) {
    return folders.Watch(depth, event, parsed);
  });
  const bool isTotal = rest.value.is_object() && rest.value.value("typeInventory", Json()) == 0;
  CheckDocument(rest, isTotal ? CheckFullFileDocument : CheckIncrementalFileDocument);
  if (!folders.HasOnly(isTotal)) {
    throw DocumentError(document.name + ": a file has a state of another type of document");
  }
  return rest;
}

}  // namespace Norvik::Documents
