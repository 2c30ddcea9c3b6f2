#include "RawSqlite.h"

#include <sqlite3.h>

#include <stdexcept>

namespace Norvik::Bench {
namespace {

constexpr char InsertText[] =
    "INSERT OR IGNORE INTO RUD2_LAST_INVENTORY(id_path, id_extension, size, last_modification, "
    "file_name, absolute_path, product_name, version, is_executable, id_company_name, "
    "file_description, id_file_state, file_version) VALUES(?,?,?,?,?,?,?,?,?,?,?,?,?)";

// The settings of the agent's own connections.
constexpr char Settings[] =
    "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL; PRAGMA cache_size=-8192; "
    "PRAGMA journal_size_limit=4194304; PRAGMA secure_delete=OFF; "
    "PRAGMA wal_autocheckpoint=250;";

void BindText(sqlite3_stmt* statement, int position, const std::string& text) {
  sqlite3_bind_text(statement, position, text.data(), static_cast<int>(text.size()), nullptr);
}

}  // namespace

struct RawSqlite::State {
  void Check(int code) const {
    if (code != SQLITE_OK && code != SQLITE_DONE) throw std::runtime_error(sqlite3_errmsg(handle));
  }
  void Run(const char* text) { Check(sqlite3_exec(handle, text, nullptr, nullptr, nullptr)); }

  sqlite3* handle = nullptr;
  sqlite3_stmt* insert = nullptr;
};

RawSqlite::RawSqlite(const std::string& file) : state_(std::make_unique<State>()) {
  state_->Check(sqlite3_open(file.c_str(), &state_->handle));
  state_->Run(Settings);
  state_->Check(sqlite3_prepare_v2(state_->handle, InsertText, -1, &state_->insert, nullptr));
}

RawSqlite::~RawSqlite() {
  sqlite3_finalize(state_->insert);
  sqlite3_close(state_->handle);
}

void RawSqlite::Clear() { state_->Run("DELETE FROM RUD2_LAST_INVENTORY"); }
void RawSqlite::Begin() { state_->Run("BEGIN IMMEDIATE"); }
void RawSqlite::Commit() { state_->Run("COMMIT"); }

std::size_t RawSqlite::CountRows(const char* text) {
  sqlite3_stmt* statement = nullptr;
  state_->Check(sqlite3_prepare_v2(state_->handle, text, -1, &statement, nullptr));
  std::size_t rows = 0;
  while (sqlite3_step(statement) == SQLITE_ROW) ++rows;
  state_->Check(sqlite3_finalize(statement));
  return rows;
}

void RawSqlite::Insert(const InventoryRow& row) {
  sqlite3_stmt* const insert = state_->insert;
  sqlite3_bind_int64(insert, 1, row.pathId);
  sqlite3_bind_int64(insert, 2, row.extensionId);
  sqlite3_bind_int64(insert, 3, row.size);
  sqlite3_bind_int64(insert, 4, row.lastModification);
  BindText(insert, 5, row.fileName);
  BindText(insert, 6, row.absolutePath);
  BindText(insert, 7, row.productName);
  BindText(insert, 8, row.version);
  sqlite3_bind_int(insert, 9, row.isExecutable);
  sqlite3_bind_int64(insert, 10, row.companyId);
  BindText(insert, 11, row.description);
  sqlite3_bind_int(insert, 12, row.state);
  BindText(insert, 13, row.fileVersion);
  state_->Check(sqlite3_step(insert));
  sqlite3_reset(insert);
}

}  // namespace Norvik::Bench
