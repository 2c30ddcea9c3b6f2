#include "receiver/database/Dialect.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/replace.hpp>

namespace Norvik::Receiver {

namespace {

constexpr int PARTITIONS = 64;

struct Word {
  const char* name;
  const char* sqlite;
  const char* postgresql;
};

constexpr Word WORDS[] = {
    // Types and clauses of tables.
    {"{uuid}", "TEXT", "UUID"},
    {"{json}", "TEXT", "JSONB"},
    {"{number}", "number INTEGER PRIMARY KEY AUTOINCREMENT",
     "number BIGINT NOT NULL DEFAULT nextval('numbers')"},
    {"{number key}", "", ", PRIMARY KEY(agent, number)"},
    // With SQLite, SOCI cuts an INTEGER to 32 bits. A name of its own keeps the order by number.
    {"{number as text}", "CAST(number AS TEXT) AS digits", "number AS digits"},
    {"{by agent}", "", " PARTITION BY HASH (agent)"},
    {"{of version}", "sqlite_master WHERE name='schema_version'",
     "pg_tables WHERE schemaname=current_schema() AND tablename='schema_version'"},
    // A writing transaction; SQLite would have to wait in its middle otherwise.
    {"{begin}", "BEGIN IMMEDIATE", "BEGIN"},
    {"{lock agent}", "", "FOR UPDATE OF a SKIP LOCKED"},
    // The elements of a JSON list, a column `value`.
    {"{each}", "json_each(?)", "json_array_elements(CAST(? AS json))"},
    // Numbers of rows are not committed in their order where several write. A row is given out once
    // every
    // older transaction has ended.
    {"{transaction}", "0", "CAST(CAST(pg_current_xact_id() AS text) AS bigint)"},
    {"{horizon}", "1", "CAST(CAST(pg_snapshot_xmin(pg_current_snapshot()) AS text) AS bigint)"},
    // A property of a record: its text, whether it begins with a number, and that number.
    {"{text of property}", "CAST(r.body ->> ? AS TEXT)", "(r.body ->> ?)"},
    {"{is number}", "r.body ->> ? GLOB '[0-9]*'", "(r.body ->> ?) ~ '^[0-9]'"},
    {"{number of property}", "CAST(r.body ->> ? AS REAL)",
     "CAST(substring(r.body ->> ? FROM '(^[0-9]{1,15}([.][0-9]{1,15}){0,1})') AS double "
     "precision)"},
    {"{contains}", "LIKE", "ILIKE"},
    {"{true}", "1", "true"},
    {"{false}", "0", "false"},
};

}  // namespace

Dialect::Dialect(const std::string& database)
    : isPostgresql_(boost::starts_with(database, "postgresql://") ||
                    boost::starts_with(database, "postgres://")) {}

std::string Dialect::Connection(const std::string& database) const {
  return isPostgresql_ ? database : "db=\"" + database + "\" timeout=30";
}

const char* Dialect::Preparation() const {
  // A plan that is made once would lock all partitions each time.
  return isPostgresql_ ? "SET client_min_messages=warning; SET plan_cache_mode=force_custom_plan; "
                         "SET timezone='UTC'"
                       : "PRAGMA synchronous=FULL";
}

std::string Dialect::Expanded(std::string statement) const {
  if (statement.find('{') == std::string::npos) return statement;
  for (const Word& word : WORDS) {
    boost::replace_all(statement, word.name, isPostgresql_ ? word.postgresql : word.sqlite);
  }
  return statement;
}

std::string Dialect::PartitionsOf(const std::string& table) const {
  std::string statements;
  for (int number = 0; isPostgresql_ && number < PARTITIONS; ++number) {
    const std::string text = std::to_string(number);
    statements += "CREATE TABLE " + table + "_" + text + " PARTITION OF " + table +
                  " FOR VALUES WITH (MODULUS " + std::to_string(PARTITIONS) + ", REMAINDER " +
                  text + ");";
  }
  return statements;
}

}  // namespace Norvik::Receiver
