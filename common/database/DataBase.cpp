#include "common/database/DataBase.h"

#include <stdexcept>
#include <unordered_map>
#include <utility>

#include "common/database/AgentData.h"
#include "common/database/ConnectionPool.h"
#include "common/database/KeyValueTable.h"
#include "common/database/Statement.h"

namespace Norvik::Common::V2 {

struct DataBase::State {
  State() : pool(ConnectionPool::Current()), connection(pool->Take()) {}
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State() {
    statements.clear();
    pool->Return(std::move(connection));
  }

  Statement& Prepared(const std::string& text);
  void EnsureTransaction();
  void RequireTransaction() const;

  std::shared_ptr<ConnectionPool> pool;
  std::unique_ptr<Connection> connection;
  std::unordered_map<std::string, Statement> statements;
  std::pair<const std::string, Statement>* latest = nullptr;
  bool writing = false;
};

// A batch mostly repeats one text, so the latest one is tried before the map is searched.
Statement& DataBase::State::Prepared(const std::string& text) {
  if (latest == nullptr || latest->first != text) {
    auto found = statements.find(text);
    if (found == statements.end()) {
      found = statements.emplace(text, Statement(*connection, text)).first;
    }
    latest = &*found;
  }
  return latest->second;
}

void DataBase::State::RequireTransaction() const {
  if (!connection->InTransaction()) {
    throw std::runtime_error("the batch was rolled back by the error of an earlier statement");
  }
}

void DataBase::State::EnsureTransaction() {
  if (writing) {
    RequireTransaction();
  } else {
    connection->Begin();
    writing = true;
  }
}

DataBase::DataBase() : state_(std::make_unique<State>()) {}

DataBase::~DataBase() = default;

DataBaseRows DataBase::ExecuteSentence(const std::string& sentence,
                                       const std::vector<DataBaseValue>& values) {
  Statement& statement = state_->Prepared(sentence);
  if (statement.Writes()) state_->EnsureTransaction();
  return statement.Run(values);
}

void DataBase::VisitRows(const std::string& sentence, const RowVisitor& visit) {
  Statement& statement = state_->Prepared(sentence);
  if (statement.Writes()) state_->EnsureTransaction();
  statement.Visit({}, visit);
}

void DataBase::Commit() {
  if (!state_->writing) return;
  state_->RequireTransaction();
  state_->connection->Commit();
  state_->writing = false;
}

bool DataBase::ExistTable(const std::string& name) {
  const auto rows = DataBase().ExecuteSentence(
      "select 1 from sqlite_master where type='table' and name='{1}' collate nocase", {name});
  return !rows.empty();
}

bool DataBase::IsTableEmpty(const std::string& name) {
  return DataBase().ExecuteSentence("select 1 from " + QuotedTableName(name) + " limit 1").empty();
}

void DataBase::ClearTable(const std::string& name) {
  DataBase dataBase;
  dataBase.ExecuteSentence("delete from " + QuotedTableName(name));
  dataBase.Commit();
}

int DataBase::GetDataTable(const std::string& key) {
  const auto text = ReadKey(AGENT_DATA_TABLE, key);
  return text ? ParseInteger<int>(*text).value_or(0) : 0;
}

void DataBase::SetDataTable(const std::string& key, int value) {
  WriteKey(AGENT_DATA_TABLE, key, std::to_string(value));
}

boost::optional<std::string> DataBase::GetOptionalStringDataTable(const std::string& key) {
  return ReadKey(AGENT_DATA_TABLE, key);
}

}  // namespace Norvik::Common::V2
