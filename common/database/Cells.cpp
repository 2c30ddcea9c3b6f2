#include "common/database/Cells.h"

#include <algorithm>
#include <initializer_list>
#include <limits>

#include "common/text/Text.h"

namespace Norvik::Common {
namespace {

bool HoldsOneOf(const std::string& text, std::initializer_list<const char*> words) {
  return std::any_of(words.begin(), words.end(),
                     [&text](const char* word) { return text.find(word) != std::string::npos; });
}

V2::DataBaseValue ReadStored(sqlite_api::sqlite3_stmt* statement, int column) {
  switch (sqlite_api::sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER: {
      const long long value = sqlite_api::sqlite3_column_int64(statement, column);
      if (value < std::numeric_limits<int>::min() || value > std::numeric_limits<int>::max()) {
        return value;
      }
      return static_cast<int>(value);
    }
    case SQLITE_FLOAT:
      return sqlite_api::sqlite3_column_double(statement, column);
    default:
      return ReadCellAsText(statement, column);
  }
}

void ReadText(sqlite_api::sqlite3_stmt* statement, int column, V2::DataBaseValue& cell) {
  auto* const former = boost::get<std::string>(&cell);
  if (former == nullptr) {
    cell = ReadCellAsText(statement, column);
    return;
  }
  // The size comes first: many cells of a file inventory are empty.
  const int size = sqlite_api::sqlite3_column_bytes(statement, column);
  if (size == 0) {
    former->clear();
    return;
  }
  const auto* const text = sqlite_api::sqlite3_column_text(statement, column);
  former->assign(reinterpret_cast<const char*>(text), static_cast<std::size_t>(size));
}

}  // namespace

CellKind KindOfDeclaredType(const char* declaredType) {
  if (declaredType == nullptr) return CellKind::Stored;
  const std::string type = ToUpper(declaredType);
  if (HoldsOneOf(type, {"BIGINT", "BIG INT", "INT8"})) return CellKind::BigInteger;
  if (HoldsOneOf(type, {"INT"})) return CellKind::Integer;
  if (HoldsOneOf(type, {"CHAR", "CLOB", "TEXT"})) return CellKind::Text;
  if (HoldsOneOf(type, {"REAL", "FLOA", "DOUB"})) return CellKind::Real;
  return CellKind::Stored;
}

std::vector<CellKind> KindsOfColumns(sqlite_api::sqlite3_stmt* statement) {
  std::vector<CellKind> kinds;
  const int count = sqlite_api::sqlite3_column_count(statement);
  kinds.reserve(static_cast<std::size_t>(count));
  for (int column = 0; column < count; ++column) {
    kinds.push_back(KindOfDeclaredType(sqlite_api::sqlite3_column_decltype(statement, column)));
  }
  return kinds;
}

std::string ReadCellAsText(sqlite_api::sqlite3_stmt* statement, int column) {
  const auto* text = sqlite_api::sqlite3_column_text(statement, column);
  if (text == nullptr) return {};
  const int size = sqlite_api::sqlite3_column_bytes(statement, column);
  return {reinterpret_cast<const char*>(text), static_cast<std::size_t>(size)};
}

void ReadCell(sqlite_api::sqlite3_stmt* statement, int column, CellKind kind,
              V2::DataBaseValue& cell) {
  switch (kind) {
    case CellKind::Integer:
      cell = sqlite_api::sqlite3_column_int(statement, column);
      break;
    case CellKind::BigInteger:
      cell = static_cast<long long>(sqlite_api::sqlite3_column_int64(statement, column));
      break;
    case CellKind::Text:
      ReadText(statement, column, cell);
      break;
    case CellKind::Real:
      cell = sqlite_api::sqlite3_column_double(statement, column);
      break;
    case CellKind::Stored:
      cell = ReadStored(statement, column);
      break;
  }
}

}  // namespace Norvik::Common
