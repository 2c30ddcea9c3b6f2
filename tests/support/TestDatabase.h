#pragma once

#include "common/database/AgentDatabase.h"
#include "common/database/DataBase.h"
#include "support/TemporaryFolder.h"

namespace Norvik::Tests {

/// A new agent database in a temporary folder. While the object exists, it is the process's
/// database.
class TestDatabase {
 public:
  TestDatabase() { Open(); }

  const boost::filesystem::path& Folder() const { return folder_.Path(); }
  boost::filesystem::path File() const {
    return folder_ / Common::SQLiteNames::SQLITE_CURRENT_DATABASE_NAME;
  }
  std::shared_ptr<Common::AgentDatabase> Get() const { return dataBase_; }
  operator std::weak_ptr<Common::IDataBase>() const { return dataBase_; }

  void Open() { dataBase_ = std::make_shared<Common::AgentDatabase>(folder_.Path()); }
  void Close() { dataBase_.reset(); }
  /// Closes and opens the database, as a new start of the process does.
  void Reopen() {
    Close();
    Open();
  }

  static Common::V2::DataBaseRows Run(const std::string& sentence,
                                      const std::vector<Common::V2::DataBaseValue>& values = {}) {
    Common::V2::DataBase dataBase;
    auto rows = dataBase.ExecuteSentence(sentence, values);
    dataBase.Commit();
    return rows;
  }

 private:
  TemporaryFolder folder_;
  std::shared_ptr<Common::AgentDatabase> dataBase_;
};

}  // namespace Norvik::Tests
