#pragma once

#include <string>
#include <vector>

#include "common/database/Connection.h"
#include "common/database/DataBase.h"

namespace Norvik::Common {

/// What a cell becomes in a result. `Stored`: an expression, or a declared type that says nothing
/// of the kind, so each cell goes by the value it holds.
enum class CellKind { Integer, BigInteger, Text, Real, Stored };

/// The kind that a column's declared type asks for; null for an expression.
CellKind KindOfDeclaredType(const char* declaredType);

/// The kinds of the columns of the row that the statement stands on.
std::vector<CellKind> KindsOfColumns(sqlite_api::sqlite3_stmt* statement);

/// A cell of the row that the statement stands on. An `Integer` keeps the low 32 bits.
V2::DataBaseValue ReadCell(sqlite_api::sqlite3_stmt* statement, int column, CellKind kind);
std::string ReadCellAsText(sqlite_api::sqlite3_stmt* statement, int column);

}  // namespace Norvik::Common
