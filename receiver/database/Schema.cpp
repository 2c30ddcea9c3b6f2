#include "receiver/database/Schema.h"

#include <stdexcept>

namespace Norvik::Receiver {

namespace {

struct Table {
  const char* name;
  const char* columns;
  bool isByAgent;       ///< divided by the agent, with which its keys begin
  const char* indexes;  ///< further statements
};

// Times are seconds since 1970, truth values 0 and 1. The body of a document is base64 of its
// deflated text. A record is a hash of its section and body: the same record has no second row.
constexpr Table TABLES[] = {
    {"agents",
     "agent {uuid} PRIMARY KEY, state TEXT NOT NULL, token TEXT NOT NULL, secret TEXT NOT NULL, "
     "host_name TEXT NOT NULL, serial_number TEXT NOT NULL, model TEXT NOT NULL, "
     "platform_uuid TEXT NOT NULL, agent_version TEXT NOT NULL, note TEXT NOT NULL, "
     "created BIGINT NOT NULL",
     true,
     "CREATE INDEX agents_by_board ON agents(platform_uuid);"
     "CREATE INDEX agents_by_state ON agents(state) WHERE state<>'enrolled';"},
    {"contacts", "agent {uuid} PRIMARY KEY, last_contact BIGINT NOT NULL, address TEXT NOT NULL",
     true, ""},
    {"conflicts",
     "agent {uuid} PRIMARY KEY, token TEXT NOT NULL, facts TEXT NOT NULL, address TEXT NOT NULL, "
     "first_time BIGINT NOT NULL, last_time BIGINT NOT NULL, times BIGINT NOT NULL",
     true, ""},
    {"secrets",
     "hash TEXT PRIMARY KEY, name TEXT NOT NULL UNIQUE, expires BIGINT NOT NULL, "
     "uses_left BIGINT NOT NULL, serial_numbers TEXT NOT NULL, revoked BIGINT NOT NULL, "
     "created BIGINT NOT NULL, last_use BIGINT NOT NULL",
     false, ""},
    {"accounts",
     "name TEXT PRIMARY KEY, role TEXT NOT NULL, password TEXT NOT NULL, created BIGINT NOT NULL",
     false, ""},
    {"tasks",
     "agent {uuid} NOT NULL, task TEXT NOT NULL, code BIGINT NOT NULL, name TEXT NOT NULL, "
     "parameters TEXT NOT NULL, period BIGINT NOT NULL, next BIGINT NOT NULL, "
     "created BIGINT NOT NULL, given BIGINT NOT NULL, ended BIGINT NOT NULL, "
     "status BIGINT NOT NULL, PRIMARY KEY(agent, task)",
     true, "CREATE INDEX tasks_waiting ON tasks(agent, created) WHERE ended=0;"},
    {"reports",
     "agent {uuid} NOT NULL, {number}, id TEXT NOT NULL, kind TEXT NOT NULL, task TEXT NOT NULL, "
     "body TEXT NOT NULL, time BIGINT NOT NULL, UNIQUE(agent, id){number key}",
     true, "CREATE INDEX reports_by_task ON reports(agent, task);"},
    {"uploads",
     "agent {uuid} NOT NULL, {number}, sha256 TEXT NOT NULL, size BIGINT NOT NULL, "
     "name TEXT NOT NULL, received BIGINT NOT NULL, state TEXT NOT NULL, reason TEXT NOT NULL, "
     "UNIQUE(agent, sha256){number key}",
     true,
     "CREATE INDEX uploads_new ON uploads(number) WHERE state='new';"
     "CREATE INDEX uploads_aside ON uploads(agent, number) WHERE state='aside';"},
    {"documents",
     "agent {uuid} NOT NULL, kind TEXT NOT NULL, body TEXT NOT NULL, asset_date BIGINT NOT NULL, "
     "stored BIGINT NOT NULL, complete BIGINT NOT NULL, PRIMARY KEY(agent, kind)",
     true, ""},
    {"records",
     "agent {uuid} NOT NULL, record BIGINT NOT NULL, section TEXT NOT NULL, body {json} NOT NULL, "
     "PRIMARY KEY(agent, record)",
     true, "CREATE INDEX records_by_section ON records(section, agent);"},
    {"changes",
     "agent {uuid} NOT NULL, {number}, txn BIGINT NOT NULL, time BIGINT NOT NULL, "
     "kind TEXT NOT NULL, section TEXT NOT NULL, body TEXT NOT NULL{number key}",
     true, "CREATE INDEX changes_by_cursor ON changes(txn, number);"},
};

constexpr long long VERSION = 1;

void CreateTables(Session& session) {
  const Dialect& dialect = session.Kind();
  if (dialect.IsShared()) session.RunScript("CREATE SEQUENCE numbers CACHE 1");
  for (const Table& table : TABLES) {
    const std::string name = table.name;
    session.RunScript("CREATE TABLE " + name + "(" + table.columns + ")" +
                      (table.isByAgent ? "{by agent}" : ""));
    if (table.isByAgent && dialect.IsShared()) session.RunScript(dialect.PartitionsOf(name));
    const std::string indexes = table.indexes;
    for (std::size_t from = 0, end = 0; (end = indexes.find(';', from)) != std::string::npos;
         from = end + 1) {
      session.RunScript(indexes.substr(from, end - from));
    }
  }
  session.RunScript("CREATE TABLE schema_version(version BIGINT NOT NULL)");
  session.Run("INSERT INTO schema_version(version) VALUES(CAST(? AS BIGINT))", {VERSION});
}

/// 0 if the database has no tables yet.
long long VersionOf(Session& session) {
  if (session.Rows<1>("SELECT 1 FROM {of version}").empty()) return 0;
  const auto versions = session.Rows<1>("SELECT version FROM schema_version");
  return versions.empty() ? 0 : std::stoll(versions.front()[0]);
}

void CheckNotNewer(long long version) {
  if (version <= VERSION) return;
  throw std::runtime_error("The database has version " + std::to_string(version) +
                           ", and this program knows versions up to " + std::to_string(VERSION));
}

}  // namespace

void PrepareSchema(Session& session) {
  const long long version = VersionOf(session);
  CheckNotNewer(version);
  if (version == VERSION) return;
  if (!session.Kind().IsShared()) session.RunScript("PRAGMA journal_mode=WAL");
  Transaction transaction(session);
  // Of several programs that start at once, one creates the tables.
  if (session.Kind().IsShared()) session.RunScript("SELECT pg_advisory_xact_lock(7308332)");
  if (VersionOf(session) == 0) CreateTables(session);
  transaction.Commit();
}

void CheckSchema(Session& session) {
  const long long version = VersionOf(session);
  CheckNotNewer(version);
  if (version == 0) throw std::runtime_error("The database holds nothing of this program yet");
}

}  // namespace Norvik::Receiver
