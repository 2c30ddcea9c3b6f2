#include "module/RUD/Data/RudDataSourceV2.h"

#include <boost/format.hpp>
#include <chrono>
#include <string>
#include <vector>

#include "common/log/Logger.h"
#include "module/ElapsedTime.h"
#include "module/RUD/Data/RudSentences.h"

namespace Norvik::KOB::V2 {

namespace {

using Common::V2::DataBase;
using Common::V2::DataBaseValue;
using std::chrono::steady_clock;

/// State of each file in its table. It has no meaning: the query that finds a file gives its state.
constexpr int FILE_STATE = 1;

std::string TimePointToString(TimePointStatus point) {
  switch (point) {
    case DateBegin:
      return "date_begin";
    case DateModified:
      return "date_modified";
    case DateEnd:
      return "date_end";
  }
  return "unknown";
}

/// Runs a step. If it throws, the error is logged and the result is the fallback.
template <class Result, class Step>
Result Try(const char* failure, Result fallback, Step step) {
  try {
    return step();
  } catch (const std::exception& error) {
    NORVIK_ERROR(boost::format(failure) % error.what());
    return fallback;
  }
}

RudDataSource::Rows Read(const char* sentence, const char* failure) {
  return Try(failure, RudDataSource::Rows(), [&] { return DataBase().ExecuteSentence(sentence); });
}

/// The only escaping of texts. Deliberately blanks: servers expect them.
std::string& WithoutApostrophes(std::string& text) {
  for (auto at = text.find('\''); at != std::string::npos; at = text.find('\'', at)) text[at] = ' ';
  return text;
}

/// Runs the inserts of one table in one transaction, which a failure rolls back.
template <class Inserts>
void InsertAll(const Sentences::Insert& insert, Inserts inserts) {
  Try(insert.failure, false, [&] {
    DataBase dataBase;
    inserts(dataBase, std::string(insert.sentence));
    dataBase.Commit();
    return true;
  });
}

void InsertTexts(const Sentences::Insert& insert, const RudBuffer::Ids& ids) {
  InsertAll(insert, [&](DataBase& dataBase, const std::string& sentence) {
    std::vector<DataBaseValue> values(2);
    std::string text;
    for (const auto& [key, id] : ids) {
      text = key;
      values[0] = static_cast<unsigned int>(id);
      values[1] = WithoutApostrophes(text);
      dataBase.ExecuteSentence(sentence, values);
    }
  });
}

void WithoutApostrophes(RudFileDetails& details) {
  for (auto* text :
       {&details.productName, &details.version, &details.fileDescription, &details.fileVersion}) {
    WithoutApostrophes(*text);
  }
}

void Fill(std::vector<DataBaseValue>& values, RudFileInfo& file) {
  if (auto* const found = file.details.Find()) WithoutApostrophes(*found);
  const RudFileDetails& details = file.details.Get();
  values[0] = static_cast<unsigned int>(file.pathId);
  values[1] = static_cast<unsigned int>(file.extensionId);
  values[2] = static_cast<long long>(file.size);
  values[3] = static_cast<long long>(file.lastModification);
  values[4] = WithoutApostrophes(file.fileName);
  values[5] = WithoutApostrophes(file.absolutePath);
  values[6] = details.productName;
  values[7] = details.version;
  values[8] = file.isExecutable ? 1 : 0;
  values[9] = static_cast<unsigned int>(file.companyId);
  values[10] = details.fileDescription;
  values[11] = FILE_STATE;
  values[12] = details.fileVersion;
}

void InsertFiles(const Sentences::Insert& insert, std::vector<RudFileInfo>& files) {
  InsertAll(insert, [&](DataBase& dataBase, const std::string& sentence) {
    // Reused from row to row, which saves allocations of texts.
    std::vector<DataBaseValue> values(13);
    for (auto& file : files) {
      Fill(values, file);
      dataBase.ExecuteSentence(sentence, values);
    }
  });
}

void Save(RudBuffer& buffer, const Sentences::Generation& generation) {
  for (const char* table : generation.tables) DataBase::ClearTable(table);
  InsertTexts(generation.extensions, buffer.GetBufferExtension());
  InsertTexts(generation.paths, buffer.GetBufferPath());
  InsertTexts(generation.companies, buffer.GetBufferCompany());
  InsertFiles(generation.files, buffer.GetBufferFile());
}

}  // namespace

RudStatus RudDataSource::GetStatus() {
  return Try("Unable to Get Status RUD: %1%", RudStatusNone, [] {
    DataBase dataBase;
    const auto rows =
        dataBase.ExecuteSentence("select id_state_harverting from RUD2_CURRENT_STATUS");
    if (rows.empty()) return RudStatusNone;
    return static_cast<RudStatus>(boost::get<int>(rows.front().front()));
  });
}

bool RudDataSource::SetStatus(RudStatus status, long time, TimePointStatus point) {
  return Try("Unable to Insert RUD Status: %1%", false, [&] {
    DataBase dataBase;
    const auto rows =
        dataBase.ExecuteSentence("select id_state_harverting from RUD2_CURRENT_STATUS where id=1");
    boost::format sentence(
        rows.empty() ? "INSERT OR IGNORE INTO RUD2_CURRENT_STATUS(id, id_state_harverting, %1%) "
                       "VALUES (1, {1}, {2})"
                     : "UPDATE RUD2_CURRENT_STATUS set id_state_harverting = {1}, %1% = {2} WHERE "
                       "id = 1");
    dataBase.ExecuteSentence((sentence % TimePointToString(point)).str(),
                             {static_cast<int>(status), time});
    dataBase.Commit();
    return true;
  });
}

bool RudDataSource::SaveBuffer(RudBuffer& buffer, const bool& incremental) {
  NORVIK_SCOPE();
  const auto start = steady_clock::now();
  return Try("Unable to saving RUD data: %1%", false, [&] {
    Save(buffer, incremental ? Sentences::TEMP : Sentences::MAIN);
    NORVIK_INFORMATION(boost::format("RUD Save Buffer finish with %1% milliseconds") %
                       std::to_string(MillisecondsSince(start)));
    return true;
  });
}

RudDataSource::Rows RudDataSource::GetLastInventory() {
  return Read(Sentences::ALL_FILES, "Error GetLastInventory: %1%");
}

bool RudDataSource::VisitLastInventory(const Common::V2::RowVisitor& visit) {
  bool visits = false;
  try {
    DataBase().VisitRows(Sentences::ALL_FILES, [&](Common::V2::DataBaseRow& row) {
      visits = true;
      visit(row);
      visits = false;
    });
    return true;
  } catch (const std::exception& error) {
    if (visits) throw;
    NORVIK_ERROR(boost::format("Error GetLastInventory: %1%") % error.what());
    return false;
  }
}

RudDataSource::Rows RudDataSource::getNewFiles() {
  return Read(Sentences::NEW_FILES, "Error getNewFiles: %1%");
}

RudDataSource::Rows RudDataSource::getRemoveFiles() {
  return Read(Sentences::REMOVED_FILES, "Error getRemoveFiles: %1%");
}

RudDataSource::Rows RudDataSource::getModifiedFiles() {
  return Read(Sentences::MODIFIED_FILES, "Error getModifiedFiles: %1%");
}

}  // namespace Norvik::KOB::V2
