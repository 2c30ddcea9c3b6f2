#include "host/history/KeptDocuments.h"

#include <sys/stat.h>

#include <algorithm>
#include <boost/algorithm/string/erase.hpp>
#include <boost/filesystem/operations.hpp>
#include <iterator>
#include <regex>
#include <set>
#include <utility>

#include "common/text/Dates.h"
#include "host/OutputText.h"
#include "host/history/DocumentHistory.h"

namespace Norvik::Host {

namespace {

namespace fs = boost::filesystem;
using Number = std::pair<dev_t, ino_t>;

constexpr const char* KINDS[] = {"full", "incremental", "files"};
constexpr const char* STATES[] = {"waiting", "delivered", "replaced"};
constexpr std::size_t DIGITS = 8;
constexpr char DELIVERED[] = "~delivered";
constexpr char OUTBOX_FOLDER[] = "outbox";

/// False if there is no such file: it may have been removed meanwhile.
bool Stat(const fs::path& file, struct stat& status) {
  return ::lstat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

std::set<Number> FilesOf(const fs::path& folder) {
  std::set<Number> files;
  if (!fs::exists(folder)) return files;
  for (const auto& entry : fs::directory_iterator(folder)) {
    struct stat status {};
    if (Stat(entry.path(), status)) files.emplace(status.st_dev, status.st_ino);
  }
  return files;
}

}  // namespace

const char* NameOf(DocumentKind kind) { return KINDS[static_cast<std::size_t>(kind)]; }

const char* NameOf(KeptDocument::State state) { return STATES[state]; }

std::string KeptName::Text() const {
  const std::string digits = std::to_string(number);
  const std::string date =
      boost::algorithm::erase_all_copy(boost::algorithm::erase_all_copy(TimeText(time), "-"), ":");
  return std::string(DIGITS - std::min(DIGITS, digits.size()), '0') + digits + "~" + date + "~" +
         NameOf(kind) + (delivered ? DELIVERED : "") + extension;
}

boost::optional<KeptName> KeptName::Parse(const std::string& text) {
  static const std::regex FORM(
      R"(([0-9]{8,18})~([0-9]{8}T[0-9]{6}Z)~(full|incremental|files)(~delivered)?(\.[a-z]+))");
  std::smatch parts;
  if (!std::regex_match(text, parts, FORM)) return boost::none;
  KeptName name;
  name.number = std::stoull(parts[1]);
  name.time = Common::UTCStringToTimePoint(parts[2], "%Y%m%dT%H%M%SZ");
  const auto kind = std::find(std::begin(KINDS), std::end(KINDS), parts[3].str());
  name.kind = static_cast<DocumentKind>(kind - std::begin(KINDS));
  name.delivered = parts[4].matched;
  name.extension = parts[5];
  return name;
}

std::vector<KeptDocument> KeptDocumentsOf(const fs::path& dataFolder) {
  std::vector<KeptDocument> documents;
  const fs::path folder = dataFolder / HISTORY_FOLDER;
  if (!fs::exists(folder)) return documents;
  // Before the outbox: what is moved or delivered meanwhile is then not taken for replaced.
  for (const auto& entry : fs::directory_iterator(folder)) {
    const auto name = KeptName::Parse(entry.path().filename().string());
    if (name) documents.push_back({entry.path(), *name, 0, KeptDocument::Delivered});
  }
  const std::set<Number> waiting = FilesOf(dataFolder / OUTBOX_FOLDER);
  const auto isGone = [&](KeptDocument& document) {
    struct stat status {};
    if (!Stat(document.path, status)) return true;
    document.bytes = static_cast<std::uintmax_t>(status.st_size);
    if (document.name.delivered) return false;
    document.state = waiting.count({status.st_dev, status.st_ino}) > 0 ? KeptDocument::Waiting
                                                                       : KeptDocument::Replaced;
    return false;
  };
  documents.erase(std::remove_if(documents.begin(), documents.end(), isGone), documents.end());
  std::sort(documents.begin(), documents.end(),
            [](const auto& one, const auto& other) { return one.name.number < other.name.number; });
  return documents;
}

}  // namespace Norvik::Host
