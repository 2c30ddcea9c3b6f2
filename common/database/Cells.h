#pragma once

#include <string>
#include <vector>

#include "common/database/Connection.h"
#include "common/database/DataBase.h"

namespace Norvik::Common {

/// The type that a cell gets in a result. `Stored`: the column is an expression, or its declared
/// type is unknown; then each cell gets the type of its value.
enum class CellKind { Integer, BigInteger, Text, Real, Stored };

/// The kind for the declared type of a column, which is null for an expression.
CellKind KindOfDeclaredType(const char* declaredType);

/// The kinds of all columns. The statement must be on a row.
std::vector<CellKind> KindsOfColumns(sqlite_api::sqlite3_stmt* statement);

/// Reads a cell of the statement's current row. A text that `cell` holds already is overwritten in
/// its memory. An `Integer` keeps the low 32 bits only.
void ReadCell(sqlite_api::sqlite3_stmt* statement, int column, CellKind kind,
              V2::DataBaseValue& cell);
std::string ReadCellAsText(sqlite_api::sqlite3_stmt* statement, int column);

}  // namespace Norvik::Common
