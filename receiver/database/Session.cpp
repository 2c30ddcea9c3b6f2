#include "receiver/database/Session.h"

#include <soci/postgresql/soci-postgresql.h>
#include <soci/soci.h>

#include <ctime>
#include <stdexcept>
#include <unordered_map>
#include <utility>

#include "common/database/Sqlite.h"

namespace Norvik::Receiver {

namespace {

/// SOCI names parameters: ":p0" for the first "?".
std::string WithNames(const std::string& statement) {
  std::string named;
  int number = 0;
  for (const char c : statement) {
    if (c == '?') {
      named += ":p" + std::to_string(number++);
    } else {
      named += c;
    }
  }
  return named;
}

const soci::backend_factory& FactoryOf(const Dialect& dialect) {
  if (dialect.IsShared()) return soci::postgresql;
  return soci::sqlite3;
}

/// Runs an action without the context that SOCI adds to errors: it has the values, which may be
/// secret or large.
template <class Action>
auto WithoutValues(Action action) {
  try {
    return action();
  } catch (const soci::soci_error& error) {
    throw std::runtime_error(error.get_error_message());
  }
}

}  // namespace

/// The statement keeps the addresses of values and cells.
struct Session::Prepared {
  Prepared(soci::session& session, const std::string& text, std::size_t values, std::size_t columns)
      : statement(session), parameters(values), cells(columns), indicators(columns) {
    statement.alloc();
    statement.prepare(text);
    for (std::string& parameter : parameters) statement.exchange(soci::use(parameter));
    for (std::size_t column = 0; column < columns; ++column) {
      statement.exchange(soci::into(cells[column], indicators[column]));
    }
    statement.define_and_bind();
  }

  soci::statement statement;
  std::vector<std::string> parameters;
  std::vector<std::string> cells;
  std::vector<soci::indicator> indicators;
};

struct Session::Connection {
  explicit Connection(const soci::backend_factory& factory, const std::string& text)
      : session(factory, text) {}

  soci::session session;
  std::unordered_map<std::string, std::unique_ptr<Prepared>> prepared;  ///< before the session
};

Session::Session(const std::string& database)
    : dialect_(database),
      connection_(
          std::make_unique<Connection>(FactoryOf(dialect_), dialect_.Connection(database))) {
  RunScript(dialect_.Preparation());
}

Session::Session(Session&& other) noexcept = default;
Session::~Session() = default;

Session::Prepared& Session::PreparedFor(const std::string& statement, const Values& values,
                                        std::size_t columns) {
  std::unique_ptr<Prepared>& prepared = connection_->prepared[statement];
  if (!prepared) {
    const std::string text = WithNames(dialect_.Expanded(statement));
    prepared = std::make_unique<Prepared>(connection_->session, text, values.size(), columns);
  }
  for (std::size_t number = 0; number < values.size(); ++number) {
    prepared->parameters.at(number) = values[number].text;
  }
  return *prepared;
}

long long Session::Run(const std::string& statement, const Values& values) {
  return WithoutValues([&] {
    Prepared& prepared = PreparedFor(statement, values, 0);
    prepared.statement.execute(true);
    return prepared.statement.get_affected_rows();
  });
}

std::vector<std::vector<std::string>> Session::RowsOf(const std::string& statement,
                                                      const Values& values, std::size_t columns) {
  return WithoutValues([&] {
    Prepared& prepared = PreparedFor(statement, values, columns);
    std::vector<std::vector<std::string>> rows;
    prepared.statement.execute(false);
    while (prepared.statement.fetch()) {
      std::vector<std::string>& row = rows.emplace_back();
      for (std::size_t column = 0; column < columns; ++column) {
        const bool isNull = prepared.indicators[column] == soci::i_null;
        row.push_back(isNull ? std::string() : prepared.cells[column]);
      }
    }
    return rows;
  });
}

void Session::RunScript(const std::string& statements) {
  connection_->session << dialect_.Expanded(statements);
}

Transaction::Transaction(Session& session) : session_(session) { session_.RunScript("{begin}"); }

Transaction::~Transaction() {
  if (!isOpen_) return;
  try {
    session_.RunScript("ROLLBACK");
  } catch (const std::exception&) {
    // The connection has gone, and the transaction with it.
  }
}

void Transaction::Commit() {
  isOpen_ = false;
  session_.RunScript("COMMIT");
}

long long Now() { return static_cast<long long>(std::time(nullptr)); }

}  // namespace Norvik::Receiver
