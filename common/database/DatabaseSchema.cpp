#include "common/database/DatabaseSchema.h"

#include <iterator>
#include <stdexcept>
#include <string>

#include "common/database/Statement.h"

namespace Norvik::Common {
namespace {

// The declared types matter: a reader gets each cell with the type of its column, INTEGER as int,
// BIGINT as long long, TEXT as string.
//
// KOB_REGISTERED_SOFTWARE: one software may have several rows, by version and folder; the same
// version in the same folder is the same row. KOB_NETWORK_DRIVES: the id is a hash of the path, and
// the last user to report a path replaces the row. RUD_STATE is read by position: the name of the
// state is the seventh column.
constexpr char FIRST_SCHEMA[] = R"sql(
CREATE TABLE DATA(name TEXT NOT NULL UNIQUE, value TEXT);
CREATE TABLE KOB_DATA(id INTEGER PRIMARY KEY, name TEXT NOT NULL UNIQUE, value TEXT);
CREATE TABLE KOB_REGISTERED_SOFTWARE(
  is_patch INTEGER NOT NULL DEFAULT 0, name TEXT NOT NULL DEFAULT '',
  uninstall_str TEXT NOT NULL DEFAULT '', install_date INTEGER NOT NULL DEFAULT 0,
  version TEXT NOT NULL DEFAULT '', publisher TEXT NOT NULL DEFAULT '',
  size BIGINT NOT NULL DEFAULT 0, product_id TEXT NOT NULL DEFAULT '',
  source TEXT NOT NULL DEFAULT '', location TEXT NOT NULL DEFAULT '',
  UNIQUE(name, version, product_id, location));
CREATE TABLE KOB_NETWORK_DRIVES(
  id INTEGER PRIMARY KEY ON CONFLICT REPLACE, Unit TEXT, Path TEXT, Server TEXT);
CREATE TABLE RUD_STATE(
  id INTEGER PRIMARY KEY, id_state INTEGER, date_begin INTEGER, date_modified INTEGER,
  date_end INTEGER, path TEXT, state_name TEXT);

CREATE TABLE RUD2_CURRENT_STATUS(
  id INTEGER PRIMARY KEY, id_state_harverting INTEGER, date_begin INTEGER, date_modified INTEGER,
  date_end INTEGER);
CREATE TABLE RUD2_FILE_PATH(id INTEGER PRIMARY KEY, path TEXT);
CREATE TABLE RUD2_FILE_PATH_TEMP(id INTEGER PRIMARY KEY, path TEXT);
CREATE TABLE RUD2_FILE_EXTENSION(id INTEGER PRIMARY KEY, extension TEXT);
CREATE TABLE RUD2_FILE_EXTENSION_TEMP(id INTEGER PRIMARY KEY, extension TEXT);
CREATE TABLE RUD2_FILE_COMPANY(id INTEGER PRIMARY KEY, company TEXT);
CREATE TABLE RUD2_FILE_COMPANY_TEMP(id INTEGER PRIMARY KEY, company TEXT);
CREATE TABLE RUD2_LAST_INVENTORY(
  id_path INTEGER, id_extension INTEGER, size BIGINT, last_modification BIGINT, file_name TEXT,
  absolute_path TEXT UNIQUE, product_name TEXT, version TEXT, is_executable INTEGER,
  id_company_name INTEGER, file_description TEXT, id_file_state INTEGER, file_version TEXT);
CREATE TABLE RUD2_LAST_INVENTORY_TEMP(
  id_path INTEGER, id_extension INTEGER, size BIGINT, last_modification BIGINT, file_name TEXT,
  absolute_path TEXT UNIQUE, product_name TEXT, version TEXT, is_executable INTEGER,
  id_company_name INTEGER, file_description TEXT, id_file_state INTEGER, file_version TEXT);
)sql";

// The rows of a scan are stored in the order of their paths, by which two scans are compared: one
// tree in place of a table and an index over it, which would hold each path twice.
constexpr char FILES_BY_PATH[] = R"sql(
ALTER TABLE RUD2_LAST_INVENTORY RENAME TO FORMER_INVENTORY;
ALTER TABLE RUD2_LAST_INVENTORY_TEMP RENAME TO FORMER_INVENTORY_TEMP;
CREATE TABLE RUD2_LAST_INVENTORY(
  id_path INTEGER, id_extension INTEGER, size BIGINT, last_modification BIGINT, file_name TEXT,
  absolute_path TEXT PRIMARY KEY, product_name TEXT, version TEXT, is_executable INTEGER,
  id_company_name INTEGER, file_description TEXT, id_file_state INTEGER, file_version TEXT)
  WITHOUT ROWID;
CREATE TABLE RUD2_LAST_INVENTORY_TEMP(
  id_path INTEGER, id_extension INTEGER, size BIGINT, last_modification BIGINT, file_name TEXT,
  absolute_path TEXT PRIMARY KEY, product_name TEXT, version TEXT, is_executable INTEGER,
  id_company_name INTEGER, file_description TEXT, id_file_state INTEGER, file_version TEXT)
  WITHOUT ROWID;
INSERT OR IGNORE INTO RUD2_LAST_INVENTORY SELECT * FROM FORMER_INVENTORY;
INSERT OR IGNORE INTO RUD2_LAST_INVENTORY_TEMP SELECT * FROM FORMER_INVENTORY_TEMP;
DROP TABLE FORMER_INVENTORY;
DROP TABLE FORMER_INVENTORY_TEMP;
)sql";

// The last runs of machine inventories. "run" is JSON: times, records and tools by section.
constexpr char LEDGER[] = R"sql(
CREATE TABLE LEDGER(id INTEGER PRIMARY KEY, run TEXT NOT NULL);
)sql";

// The script at [n] upgrades from version n to n + 1. A script that has been released never
// changes.
constexpr const char* MIGRATIONS[] = {FIRST_SCHEMA, FILES_BY_PATH, LEDGER};

int SchemaVersion(Connection& connection) {
  return boost::get<int>(Statement(connection, "PRAGMA user_version").Run({}).at(0).at(0));
}

}  // namespace

int NewestSchemaVersion() { return static_cast<int>(std::size(MIGRATIONS)); }

void CheckSchemaVersion(Connection& connection) {
  const int version = SchemaVersion(connection);
  if (version < 0 || version > NewestSchemaVersion()) {
    throw std::runtime_error("its schema has version " + std::to_string(version) +
                             ", this program knows versions up to " +
                             std::to_string(NewestSchemaVersion()));
  }
}

void UpgradeSchema(Connection& connection) {
  if (SchemaVersion(connection) == NewestSchemaVersion()) return;
  connection.Begin();
  // Read again: another process may have done the work while this one waited.
  for (int version = SchemaVersion(connection); version < NewestSchemaVersion(); ++version) {
    connection.ExecuteScript(MIGRATIONS[version]);
  }
  connection.ExecuteScript("PRAGMA user_version=" + std::to_string(NewestSchemaVersion()));
  connection.Commit();
}

}  // namespace Norvik::Common
