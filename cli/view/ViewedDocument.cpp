#include "cli/view/ViewedDocument.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

#include "common/text/MaskedDocument.h"
#include "common/text/Text.h"
#include "documents/DocumentError.h"
#include "documents/FileReading.h"
#include "documents/MachineDocument.h"

namespace Norvik::Cli {

namespace {

using Documents::DocumentError;
using Documents::Json;
using Documents::NamedText;

std::string TextIn(const Json& record, const char* key) {
  const auto found = record.is_object() ? record.find(key) : record.end();
  if (found == record.end() || !found->is_string()) return "";
  return Common::EncodeUtf8Characters(
      Common::MaskedDocument::Unmask(found->get_ref<const std::string&>()));
}

/// The time in "device"; 0 if it is missing, not positive or after the year 9999.
std::int64_t TimeIn(const Json& device) {
  constexpr std::int64_t LAST = 253'402'300'799'999;  // of the year 9999
  const Json time = device.value("assetDate", Json());
  return time.is_number_integer() && time > 0 && time <= LAST ? time.get<std::int64_t>() : 0;
}

/// Also the quick answer for a large file of anything else.
void CheckBegin(const NamedText& document) {
  const auto begin = document.text.find_first_not_of(" \t\r\n");
  if (begin == std::string::npos || document.text[begin] == 'n') {
    throw DocumentError(document.name + ": nothing to show, it is empty or null");
  }
  if (document.text[begin] == '{') return;
  throw DocumentError(document.name + ": no document of an inventory");
}

Json ReadMachineDocument(const NamedText& text, bool& isIncremental) {
  Documents::Document document = Documents::ParseDocument(text);
  isIncremental = document.value.contains("create");
  Documents::CheckDocument(
      document, isIncremental ? Documents::CheckIncrementalDocument : Documents::CheckFullDocument);
  return std::move(document.value);
}

Json ReadFileInventory(const NamedText& text, bool& isIncremental) {
  Json document = Documents::ReadFileDocument(text, [](const Json& /*folder*/) {}).value;
  isIncremental = document.at("typeInventory") == 1;
  return document;
}

}  // namespace

Json ViewedDocument::Seconds() const { return time == 0 ? Json() : Json(time / 1000); }

ViewedDocument ViewedDocumentOf(const boost::filesystem::path& file, std::string text) {
  static constexpr char BYTE_ORDER_MARK[] = "\xEF\xBB\xBF";
  // Readers in a browser refuse it.
  if (text.compare(0, 3, BYTE_ORDER_MARK) == 0) text.erase(0, 3);
  NamedText named{file.string(), std::move(text)};
  CheckBegin(named);
  ViewedDocument viewed;
  viewed.isFiles = Documents::IsFileDocumentText(named.text);
  const auto read = viewed.isFiles ? ReadFileInventory : ReadMachineDocument;
  const Json document = read(named, viewed.isIncremental);
  const Json& device = document.at("device");
  viewed.time = TimeIn(device);
  viewed.machine = TextIn(device, "guid");
  viewed.host = TextIn(device, "name");
  viewed.family = TextIn(document.value("os", Json()), "family");
  viewed.file = file;
  viewed.name = Common::EncodeUtf8Characters(file.filename().string());
  viewed.text = std::move(named.text);
  return viewed;
}

void CheckOneMachine(const std::vector<ViewedDocument>& documents) {
  const ViewedDocument& first = documents.front();
  for (const ViewedDocument& document : documents) {
    if (document.machine == first.machine) continue;
    throw DocumentError(document.file.string() + " is of the machine " +
                        Documents::Quoted(document.machine) + ", but " + first.file.string() +
                        " of " + Documents::Quoted(first.machine));
  }
}

void PutInOrder(std::vector<ViewedDocument>& documents) {
  std::map<bool, std::int64_t> firstFull;
  for (const ViewedDocument& document : documents) {
    if (document.isIncremental) continue;
    const auto [first, isNew] = firstFull.emplace(document.isFiles, document.time);
    first->second = std::min(first->second, document.time);
  }
  const auto placeOf = [&](const ViewedDocument& document) {
    const auto first = firstFull.find(document.isFiles);
    const bool leads = first != firstFull.end() && first->second < document.time;
    const int rank = !document.isIncremental ? 1 : leads ? 0 : 2;
    return std::make_tuple(document.time, document.isFiles, rank);
  };
  std::stable_sort(documents.begin(), documents.end(),
                   [&](const ViewedDocument& left, const ViewedDocument& right) {
                     return placeOf(left) < placeOf(right);
                   });
}

std::vector<std::string> RemoveDuplicates(std::vector<ViewedDocument>& documents) {
  std::vector<std::string> notes;
  std::vector<ViewedDocument> kept;
  for (ViewedDocument& document : documents) {
    const auto same = std::find_if(kept.begin(), kept.end(), [&](const ViewedDocument& other) {
      return other.time == document.time && other.text == document.text;
    });
    if (same == kept.end()) {
      kept.push_back(std::move(document));
    } else {
      notes.push_back(document.name + " is the same document as " + same->name);
    }
  }
  documents = std::move(kept);
  return notes;
}

}  // namespace Norvik::Cli
