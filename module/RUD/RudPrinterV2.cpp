#include "module/RUD/RudPrinterV2.h"

#include <soci/error.h>

#include <boost/filesystem/fstream.hpp>
#include <boost/filesystem/operations.hpp>
#include <boost/format.hpp>
#include <charconv>
#include <chrono>
#include <string_view>
#include <utility>

#include "common/files/FilePipeline.h"
#include "common/files/Paths.h"
#include "common/identification/HostInfoProvider.h"
#include "common/log/Logger.h"
#include "common/progress/Progress.h"
#include "json/Escape.h"
#include "json/JSON.h"
#include "module/ElapsedTime.h"
#include "module/Entities/FileStatus.h"
#include "module/RUD/Data/RudDataSourceV2.h"
#include "platform/WaitClock.h"

namespace Norvik::KOB::V2 {

namespace {

namespace fs = boost::filesystem;
using Common::V2::DataBaseRow;
using Source = RudDataSource;
using std::chrono::seconds;

constexpr int MOST_ATTEMPTS = 50;
constexpr seconds PAUSE_PER_ATTEMPT{500};
constexpr seconds PAUSE_OF_REMOVAL{5};

const std::string& TextOf(const DataBaseRow& row, Source::Column column) {
  return boost::get<std::string>(row[column]);
}

json::JSON DetailOf(const DataBaseRow& row) {
  json::JSON detail;
  const auto add = [&](const char* key, Source::Column column) {
    if (!TextOf(row, column).empty()) detail[key] = TextOf(row, column);
  };
  add("name", Source::ProductName);
  add("productVersion", Source::Version);
  // Deliberately the product's version, if the file has a version of its own: servers expect it.
  if (!TextOf(row, Source::FileVersion).empty()) {
    detail["fileVersion"] = TextOf(row, Source::Version);
  }
  if (TextOf(row, Source::FileDescription) != " ") add("description", Source::FileDescription);
  add("manufacturer", Source::Company);
  return detail;
}

void AppendText(std::string& out, std::string_view start, const std::string& value) {
  out += start;
  json::AppendEscaped(out, value);
  out += "\",";
}

void AppendNumber(std::string& out, std::string_view start, long long value) {
  char digits[24];
  char* const end = std::to_chars(digits, digits + sizeof digits - 1, value).ptr;
  *end = ',';
  out += start;
  out.append(digits, end + 1);
}

/// The object of one file, in ascending order of its keys.
void AppendFile(std::string& out, const DataBaseRow& row, FileStatus status) {
  out += '{';
  if (const json::JSON detail = DetailOf(row); !detail.IsNull()) {
    out.append("\"detail\":").append(detail.strUgly()).append(",");
  }
  if (boost::get<int>(row[Source::IsExecutable]) != 0) out += "\"executable\":true,";
  AppendText(out, "\"extension\":\"", TextOf(row, Source::Extension));
  AppendNumber(out, "\"fileStatus\":", status);
  AppendText(out, "\"filename\":\"", TextOf(row, Source::FileName));
  // Deliberately also for a time that could not be read, which is -1.
  const long long time = boost::get<long long>(row[Source::LastModification]);
  if (time != 0) AppendNumber(out, "\"lastMod\":", time);
  AppendNumber(out, "\"size\":", boost::get<long long>(row[Source::Size]));
  out.back() = '}';
}

/// The text of the document, made row by row: JSON values of a whole disk would need too much
/// memory. Successive rows of one folder form one object.
class DocumentText {
 public:
  explicit DocumentText(const json::JSON& device)
      : text_("{\"device\":" + device.strUgly() + ",\"paths\":[") {}

  void Add(const DataBaseRow& row, FileStatus status) {
    if (TextOf(row, Source::Path) != currentPath_) {
      if (groupIsOpen_) CloseGroup();
      currentPath_ = TextOf(row, Source::Path);
      groupIsOpen_ = true;
      files_.clear();
    }
    if (!files_.empty()) files_ += ',';
    AppendFile(files_, row, status);
  }

  /// Ends the rows of one state.
  void EndState() {
    if (!files_.empty()) CloseGroup();
    groupIsOpen_ = false;
    currentPath_.clear();
  }

  /// Moves the whole text out; empty if it holds no file.
  std::string Finish(bool incremental) {
    if (!hasGroups_) return {};
    text_ += incremental ? "],\"typeInventory\":1}" : "],\"typeInventory\":0}";
    return std::move(text_);
  }

 private:
  void CloseGroup() {
    if (std::exchange(hasGroups_, true)) text_ += ',';
    text_.append("{\"files\":[").append(files_).append("]");
    files_.clear();
    if (groupIsOpen_) {
      text_ += ",\"pathName\":\"";
      json::AppendEscaped(text_, currentPath_);
      text_ += '"';
    }
    text_ += '}';
  }

  std::string text_;
  std::string files_;  ///< of the current folder
  std::string currentPath_;
  bool groupIsOpen_ = false;
  bool hasGroups_ = false;
};

void printFiles(const Source::Rows& rows, DocumentText& document, FileStatus status) {
  for (const auto& row : rows) document.Add(row, status);
  document.EndState();
}

/// False if not every file was read: the server would take the missing files for deleted.
bool CreateJSONCompleto(DocumentText& document) {
  const bool whole =
      Source::VisitLastInventory([&](DataBaseRow& row) { document.Add(row, WHOLE_INVENTORY); });
  document.EndState();
  return whole;
}

void CreateJSONIncremental(DocumentText& document) {
  printFiles(Source::getNewFiles(), document, NEW_FILE);
  printFiles(Source::getRemoveFiles(), document, REMOVED_FILE);
  printFiles(Source::getModifiedFiles(), document, MODIFIED_FILE);
}

long long MillisecondsSinceEpoch() {
  using namespace std::chrono;
  return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
}

std::string MakeDocument(const std::string& guid, bool incremental, int attempt) {
  json::JSON device;
  device["assetDate"] = MillisecondsSinceEpoch();
  device["guid"] = guid;
  DocumentText document(device);
  bool whole = true;
  if (incremental) {
    CreateJSONIncremental(document);
  } else {
    whole = CreateJSONCompleto(document);
  }
  if (attempt >= 2) NORVIK_DETAIL(boost::format("Try [%1%]: Success") % std::to_string(attempt));
  return whole ? document.Finish(incremental) : std::string();
}

/// The document's text; empty if it would hold no file, and after a failure.
std::string CreateJSON(const std::string& guid, bool incremental) {
  const auto failure = [](int attempt, const std::exception& error) {
    return boost::format("Creating JSOn of RUD - %2%") % attempt % error.what();
  };
  for (int attempt = 1;; ++attempt) {
    try {
      return MakeDocument(guid, incremental, attempt);
    } catch (const soci::soci_error& error) {
      NORVIK_DETAIL(boost::format("Try [%1%]") % std::to_string(attempt));
      NORVIK_TRACE(failure(attempt, error));
      // Deliberately in seconds, not milliseconds: the database may be locked for hours.
      Platform::WaitClock::Current().SleepFor(PAUSE_PER_ATTEMPT * attempt);
      if (attempt < MOST_ATTEMPTS) continue;
      NORVIK_ERROR(failure(attempt, error));
    } catch (const std::exception& error) {
      NORVIK_ERROR(failure(attempt, error));
    }
    return {};
  }
}

fs::path GenerateFilename() {
  using Common::Paths;
  return Paths(Paths::WORK, true).AppData() / (Common::HostInfoProvider::GetHostName() + ".rud");
}

/// Leaves no partial document, whose missing files would be taken for deleted.
void SaveFile(const std::string& text, const fs::path& file) {
  fs::ofstream stream(file, std::ios::binary | std::ios::trunc);
  stream << text;
  stream.close();
  if (stream) return Common::ReportDocument({Common::DocumentStep::WRITE, true, {}, file, {}});
  NORVIK_ERROR(boost::format("Unable to write %1%") % file.string());
  boost::system::error_code ignored;
  fs::remove(file, ignored);
}

void Compress(const fs::path& from, const fs::path& to) {
  if (Common::CompressFile(from, to)) return;
  NORVIK_ERROR(boost::format("Unable to compress %1% from %2%") % to.string() % from.string());
}

void Encrypt(const fs::path& from, const fs::path& to) {
  if (Common::AgentEncryptFile(from, to)) return;
  NORVIK_ERROR(boost::format("Unable to encrypt %1% from %2%") % to.string() % from.string());
}

/// Deliberately without a limit: no readable copy of a document may remain.
void RemoveTempFile(const fs::path& file) {
  for (int attempt = 1;; ++attempt) {
    boost::system::error_code error;
    fs::remove(file, error);
    if (!error) {
      if (attempt >= 2) {
        NORVIK_WARNING(boost::format("Try [%1%]. Success. Remove file %2%") %
                       std::to_string(attempt) % file.string());
      }
      return;
    }
    NORVIK_WARNING(boost::format("Try [%1%]. Remove file %2%: %3%") % std::to_string(attempt) %
                   file.string() % error.message());
    Platform::WaitClock::Current().SleepFor(PAUSE_OF_REMOVAL);
  }
}

}  // namespace

fs::path RudPrinter::GenerateJSON(const std::string& guid, const bool& incremental) {
  NORVIK_INFORMATION("Generating JSON RUD Complete");
  const auto start = std::chrono::steady_clock::now();
  const fs::path base = GenerateFilename();
  const fs::path archive = base.string() + "rud.zip";
  fs::path result = base.string() + ".jsonrud";
  {
    const std::string document = CreateJSON(guid, incremental);
    if (document.empty()) {
      NORVIK_WARNING("RUD incremental empty. Without changes.");
      return {};
    }
    SaveFile(document, base);
  }
  Compress(base, archive);
  Encrypt(archive, result);
  RemoveTempFile(base);
  RemoveTempFile(archive);
  NORVIK_INFORMATION(boost::format("RUD Generating JSON finish with %1% milliseconds") %
                     std::to_string(MillisecondsSince(start)));
  return result;
}

}  // namespace Norvik::KOB::V2
