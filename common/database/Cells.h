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

/// Reads a cell of the row that the statement stands on, a text into the memory of the one before.
/// An `Integer` keeps the low 32 bits.
void ReadCell(sqlite_api::sqlite3_stmt* statement, int column, CellKind kind,
              V2::DataBaseValue& cell);
std::string ReadCellAsText(sqlite_api::sqlite3_stmt* statement, int column);

}  // namespace Norvik::Common
