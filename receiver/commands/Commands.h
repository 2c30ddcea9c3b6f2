#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "receiver/database/Session.h"
#include "receiver/http/Server.h"

namespace Norvik::Receiver {

/// A wrong use that the command line itself does not show.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What all commands are given.
struct Place {
  std::string data = "/var/lib/norvik-receiver";
  std::string database;  ///< empty: the file of SQLite in the data folder
  bool json = false;

  std::string Database() const { return database.empty() ? data + "/receiver.sqlite3" : database; }
  /// A connection to a database that exists. Throws `std::runtime_error`.
  Session Open() const;
};

struct RunOptions {
  ServerOptions server;
  std::string keys;  ///< empty: `keys` in the data folder
  bool isPlain = false;
  bool isBehindProxy = false;
  bool hasWorkers = true;
  unsigned int workers = 2;
  bool keepsFiles = false;
};

struct ApproveOptions {
  std::vector<std::string> agents;  ///< empty: lists those that wait
  bool refuses = false;
  bool acceptsToken = false;  ///< that of the conflict
};

struct SecretOptions {
  std::string action, name;
  long long days = 30;
  long long uses = -1;
  std::vector<std::string> serialNumbers;
};

struct AccountOptions {
  std::string action, name;
  std::string role = "look";
};

struct TaskOptions {
  std::string action, agent, search, task, name;
  long long code = 0, period = 0, next = 0;
  long long machines = -1;  ///< how many `search` must find; -1: not said
  std::vector<std::string> parameters;
};

struct SearchOptions {
  std::string expression;
  long long limit = 1000;
  bool counts = false;
};

struct ExportOptions {
  std::string since;
  long long limit = -1;
};

// The commands. They throw `UsageError` or another `std::runtime_error`, and return the exit code.

int RunServer(const Place& place, const RunOptions& options);
int RunWorkers(const Place& place, const RunOptions& options);
int MakeOrListKeys(const Place& place, const std::string& action, const std::string& folder);
int Approve(const Place& place, const ApproveOptions& options);
int ChangeSecrets(const Place& place, const SecretOptions& options);
int ChangeAccounts(const Place& place, const AccountOptions& options);
int ChangeTasks(const Place& place, const TaskOptions& options);
int Search(const Place& place, const SearchOptions& options);
int Export(const Place& place, const ExportOptions& options);
int ListAside(const Place& place, const std::string& agent);
int Check(const Place& place);

/// Prints a table, or a JSON object a line with the names of the columns as keys. A name that ends
/// with "#" is that of numbers.
void PrintRows(const Place& place, const std::vector<std::string>& columns,
               const std::vector<std::vector<std::string>>& rows);
template <std::size_t count>
void PrintRows(const Place& place, const std::vector<std::string>& columns,
               const std::vector<std::array<std::string, count>>& rows) {
  std::vector<std::vector<std::string>> copies;
  for (const auto& row : rows) copies.emplace_back(row.begin(), row.end());
  PrintRows(place, columns, copies);
}

}  // namespace Norvik::Receiver
