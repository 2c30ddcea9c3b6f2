#include "common/database/Statement.h"

#include <locale>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "common/database/Cells.h"

namespace Norvik::Common {
namespace {

using sqlite_api::sqlite3_int64;

// Makes the statement ready for its next run, and releases the locks of this one.
class ResetAtEnd {
 public:
  explicit ResetAtEnd(sqlite_api::sqlite3_stmt* statement) : statement_(statement) {}
  ResetAtEnd(const ResetAtEnd&) = delete;
  ResetAtEnd& operator=(const ResetAtEnd&) = delete;
  ~ResetAtEnd() { sqlite_api::sqlite3_reset(statement_); }

 private:
  sqlite_api::sqlite3_stmt* statement_;
};

std::string TextOf(double value) {
  std::ostringstream stream;
  stream.imbue(std::locale::classic());
  stream.precision(17);
  stream << value;
  return stream.str();
}

template <class Integer>
std::string TextOf(Integer value) {
  return std::to_string(value);
}

// Binds one value to one parameter and returns SQLite's result. A text is not copied: it lives
// until the statement has run, and is bound again before the next run.
struct Binder : boost::static_visitor<int> {
  explicit Binder(sqlite_api::sqlite3_stmt* toStatement) : statement(toStatement) {}

  int operator()(const std::string& value) const {
    if (value.empty()) {
      if (std::exchange(bound->kind, BoundValue::EmptyText) == BoundValue::EmptyText)
        return SQLITE_OK;
      return sqlite_api::sqlite3_bind_text64(statement, position, "", 0, nullptr, SQLITE_UTF8);
    }
    bound->kind = BoundValue::Other;
    return sqlite_api::sqlite3_bind_text64(statement, position, value.data(), value.size(), nullptr,
                                           SQLITE_UTF8);
  }
  int operator()(double value) const {
    bound->kind = BoundValue::Other;
    return asText ? Copied(TextOf(value))
                  : sqlite_api::sqlite3_bind_double(statement, position, value);
  }
  // An unsigned 64-bit number above the signed range keeps its bits.
  template <class Integer>
  int operator()(Integer value) const {
    if (asText) {
      bound->kind = BoundValue::Other;
      return Copied(TextOf(value));
    }
    const auto number = static_cast<sqlite3_int64>(value);
    if (bound->kind == BoundValue::Number && bound->number == number) return SQLITE_OK;
    *bound = {BoundValue::Number, number};
    return sqlite_api::sqlite3_bind_int64(statement, position, number);
  }
  int Copied(const std::string& value) const {
    const auto copy = reinterpret_cast<sqlite_api::sqlite3_destructor_type>(-1);
    return sqlite_api::sqlite3_bind_text64(statement, position, value.data(), value.size(), copy,
                                           SQLITE_UTF8);
  }

  sqlite_api::sqlite3_stmt* statement;
  BoundValue* bound = nullptr;  ///< to the parameter
  int position = 0;
  bool asText = false;
};

}  // namespace

Statement::Statement(Connection& connection, const std::string& text)
    : connection_(connection), text_(text), sentence_(ParseSentence(text)) {
  sqlite_api::sqlite3_stmt* prepared = nullptr;
  const char* rest = nullptr;
  const int code = sqlite_api::sqlite3_prepare_v3(connection_.Handle(), sentence_.sql.c_str(),
                                                  static_cast<int>(sentence_.sql.size() + 1),
                                                  SQLITE_PREPARE_PERSISTENT, &prepared, &rest);
  handle_.reset(prepared);
  if (code != SQLITE_OK) connection_.ThrowLastError(code, text_);
  if (prepared == nullptr) throw soci::soci_error("no statement in: " + text_);
  if (std::string(rest).find_first_not_of("; \t\r\n") != std::string::npos) {
    throw soci::soci_error("more than one statement in: " + text_);
  }
  writes_ = sqlite_api::sqlite3_stmt_readonly(prepared) == 0;
  bound_.resize(sentence_.parameters.size());
}

void Statement::Bind(const std::vector<V2::DataBaseValue>& values) {
  if (values.size() < sentence_.valuesNeeded) {
    throw std::out_of_range("placeholder {" + std::to_string(sentence_.valuesNeeded) +
                            "} has no value, " + std::to_string(values.size()) +
                            " given, in: " + text_);
  }
  Binder binder(handle_.get());
  for (const auto& parameter : sentence_.parameters) {
    binder.bound = &bound_[static_cast<std::size_t>(binder.position)];
    ++binder.position;
    binder.asText = parameter.asText;
    const int code = boost::apply_visitor(binder, values[parameter.value]);
    if (code == SQLITE_OK) continue;
    *binder.bound = {};
    connection_.ThrowLastError(code, text_);
  }
}

bool Statement::Step() {
  const int code = sqlite_api::sqlite3_step(handle_.get());
  if (code == SQLITE_ROW) return true;
  if (code != SQLITE_DONE) connection_.ThrowLastError(code, text_);
  return false;
}

V2::DataBaseRows Statement::Run(const std::vector<V2::DataBaseValue>& values) {
  V2::DataBaseRows rows;
  Visit(values, [&rows](V2::DataBaseRow& row) { rows.push_back(std::move(row)); });
  return rows;
}

void Statement::Visit(const std::vector<V2::DataBaseValue>& values, const V2::RowVisitor& visit) {
  const ResetAtEnd reset(handle_.get());
  Bind(values);
  if (!Step()) return;
  // Not before the first step, which prepares the text again if the schema has changed.
  const std::vector<CellKind> kinds = KindsOfColumns(handle_.get());
  // The row is reused from step to step, with the memory of its texts.
  V2::DataBaseRow row;
  do {
    row.resize(kinds.size());
    for (std::size_t column = 0; column < kinds.size(); ++column) {
      ReadCell(handle_.get(), static_cast<int>(column), kinds[column], row[column]);
    }
    visit(row);
  } while (Step());
}

std::unique_ptr<DbResponseTable> Statement::RunAsTable(
    const std::vector<V2::DataBaseValue>& values) {
  const ResetAtEnd reset(handle_.get());
  Bind(values);
  if (!Step()) return nullptr;
  auto table = std::make_unique<DbResponseTable>();
  const int columns = sqlite_api::sqlite3_column_count(handle_.get());
  for (int column = 0; column < columns; ++column) {
    const char* declared = sqlite_api::sqlite3_column_decltype(handle_.get(), column);
    table->columns.push_back({sqlite_api::sqlite3_column_name(handle_.get(), column),
                              declared == nullptr ? "" : declared});
  }
  do {
    auto& row = table->rows.emplace_back();
    for (int column = 0; column < columns; ++column) {
      row.push_back(ReadCellAsText(handle_.get(), column));
    }
  } while (Step());
  return table;
}

}  // namespace Norvik::Common
