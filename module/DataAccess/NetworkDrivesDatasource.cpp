#include "module/DataAccess/NetworkDrivesDatasource.h"

#include <boost/format.hpp>
#include <string>

#include "common/database/DataBase.h"
#include "common/log/Logger.h"

namespace Norvik::KOB::V2 {

namespace {

using Common::V2::DataBase;

constexpr char SELECT[] = "select id, Unit, Path, Server from KOB_NETWORK_DRIVES";
constexpr char INSERT[] =
    "insert into KOB_NETWORK_DRIVES( id, Unit, Path, Server) values(%1%, '%2%', '%3%', '%4%')";
constexpr char DELETE[] = "delete from KOB_NETWORK_DRIVES";
// Deliberately "Create" for reading and writing alike: log monitors search for this text.
constexpr char ERROR[] = "Error Create Network Drives Table: %1%";

NetworkDriveInfo DriveOf(const Common::V2::DataBaseRow& row) {
  NetworkDriveInfo drive;
  drive.id = static_cast<unsigned long long>(boost::get<int>(row.at(0)));
  drive.unit = boost::get<std::string>(row.at(1));
  drive.path = boost::get<std::string>(row.at(2));
  drive.server = boost::get<std::string>(row.at(3));
  return drive;
}

}  // namespace

boost::optional<std::vector<NetworkDriveInfo>> NetworkDrivesDatasource::Get() {
  try {
    std::vector<NetworkDriveInfo> drives;
    for (const auto& row : DataBase().ExecuteSentence(SELECT, {})) drives.push_back(DriveOf(row));
    if (!drives.empty()) return drives;
  } catch (const std::exception& error) {
    NORVIK_ERROR(boost::format(ERROR) % error.what());
  }
  return boost::none;
}

bool NetworkDrivesDatasource::Set(const NetworkDriveInfo& drive) {
  try {
    DataBase dataBase;
    dataBase.ExecuteSentence(INSERT, {drive.id, drive.unit, drive.path, drive.server});
    dataBase.Commit();
    return true;
  } catch (const std::exception& error) {
    NORVIK_ERROR(boost::format(ERROR) % error.what());
    return false;
  }
}

void NetworkDrivesDatasource::TruncateNetworkDrivesTable() {
  try {
    DataBase dataBase;
    dataBase.ExecuteSentence(DELETE);
    dataBase.Commit();
  } catch (const std::exception& error) {
    NORVIK_ERROR(boost::format("Error Truncate Network Drives Table: %1%") % error.what());
  }
}

}  // namespace Norvik::KOB::V2
