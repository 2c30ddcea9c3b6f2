#include "module/RUD/Data/RudDataSourceV2.h"

#include <boost/format.hpp>
#include <string>

#include "common/database/DataBase.h"

namespace Norvik::KOB::V2 {

namespace {

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

}  // namespace

RudStatus RudDataSource::GetStatus() {
  Common::V2::DataBase dataBase;
  const auto rows = dataBase.ExecuteSentence("select id_state_harverting from RUD2_CURRENT_STATUS");
  if (rows.empty()) return RudStatusNone;
  return static_cast<RudStatus>(boost::get<int>(rows.front().front()));
}

bool RudDataSource::SetStatus(RudStatus status, long time, TimePointStatus point) {
  Common::V2::DataBase dataBase;
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
}

}  // namespace Norvik::KOB::V2
