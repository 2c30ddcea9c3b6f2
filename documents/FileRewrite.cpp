#include "documents/FileRewrite.h"

#include <algorithm>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "documents/FileReading.h"
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

class SortedFiles {
 public:
  void Add(std::string path, const Json& file) {
    files_[{PlaceOf(file["fileStatus"]), std::move(path)}].push_back(
        {file["filename"], file["extension"], TextOf(file)});
  }

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
  std::map<std::pair<int, std::string>, std::vector<Written>> files_;
};

}  // namespace

std::string RewriteFileDocument(const NamedText& document, const RewriteFile& rewriteFile,
                                const std::function<void(Json&)>& rewriteRest) {
  SortedFiles files;
  Document rest = ReadFileDocument(document, [&](Json& folder) {
    for (Json& file : folder["files"]) {
      std::string path = folder["pathName"];
      rewriteFile(path, file);
      files.Add(std::move(path), file);
    }
  });
  rewriteRest(rest.value);
  std::string text;
  for (const auto& [key, value] : rest.value.items()) {
    text += (text.empty() ? "{" : ",") + TextOf(key) + ":";
    text += key == "paths" ? files.Text() : TextOf(value);
  }
  return text + "}";
}

}  // namespace Norvik::Documents
