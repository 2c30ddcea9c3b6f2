// Inserts of file inventory rows through `ExecuteSentence`, compared with SQLite's C interface and
// a prepared statement. Both write the same rows into the same table of a database with the agent's
// schema, with the same settings, in one transaction. The values are created for each row, as in
// the store of the file inventory.

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "InventoryRow.h"
#include "RawSqlite.h"
#include "common/database/DataBase.h"
#include "support/TestDatabase.h"

namespace Norvik::Bench {
namespace {

using Common::V2::DataBase;
using Common::V2::DataBaseValue;

constexpr char InsertText[] =
    "INSERT OR IGNORE INTO RUD2_LAST_INVENTORY(    id_path, id_extension, size, "
    "last_modification, file_name, absolute_path, product_name, version, is_executable, "
    "id_company_name,     file_description, id_file_state, file_version     ) values ({1}, {2}, "
    "{3}, {4}, '{5}', '{6}', '{7}', '{8}', {9}, {10}, '{11}', {12}, '{13}')";

InventoryRow MakeRow(unsigned int number) {
  const std::string name = "library-component-" + std::to_string(number);
  const std::string folder =
      "/Applications/Suite " + std::to_string(number / 40) + ".app/Contents/Frameworks/";
  return {number / 40,
          number % 97,
          static_cast<long long>(number) * 4096,
          1700000000000LL + number,
          name,
          folder + name + ".dylib",
          "Suite",
          "4.2." + std::to_string(number % 10),
          1,
          number % 50,
          "Component of the suite",
          1,
          "4.2"};
}

std::vector<InventoryRow> MakeRows(std::int64_t count) {
  std::vector<InventoryRow> rows;
  for (std::int64_t number = 0; number < count; ++number) {
    rows.push_back(MakeRow(static_cast<unsigned int>(number)));
  }
  return rows;
}

std::vector<DataBaseValue> ValuesOf(const InventoryRow& row) {
  return {row.pathId,       row.extensionId, row.size,       row.lastModification, row.fileName,
          row.absolutePath, row.productName, row.version,    row.isExecutable,     row.companyId,
          row.description,  row.state,       row.fileVersion};
}

void CheckCount(benchmark::State& state, std::size_t expected) {
  const auto rows = DataBase().ExecuteSentence("select count(*) from RUD2_LAST_INVENTORY");
  if (boost::get<int>(rows.at(0).at(0)) != static_cast<int>(expected)) {
    state.SkipWithError("rows are missing");
  }
}

void InsertByExecuteSentence(benchmark::State& state) {
  const Tests::TestDatabase database;
  const auto rows = MakeRows(state.range(0));
  const std::string text = InsertText;
  for (auto _ : state) {
    state.PauseTiming();
    DataBase::ClearTable("RUD2_LAST_INVENTORY");
    state.ResumeTiming();
    DataBase dataBase;
    for (const auto& row : rows) dataBase.ExecuteSentence(text, ValuesOf(row));
    dataBase.Commit();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
  CheckCount(state, rows.size());
}

void InsertByPreparedStatement(benchmark::State& state) {
  const Tests::TestDatabase database;
  const auto rows = MakeRows(state.range(0));
  RawSqlite raw(database.File().string());
  for (auto _ : state) {
    state.PauseTiming();
    raw.Clear();
    state.ResumeTiming();
    raw.Begin();
    for (const auto& row : rows) raw.Insert(row);
    raw.Commit();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
  CheckCount(state, rows.size());
}

BENCHMARK(InsertByPreparedStatement)->Arg(10000)->Arg(300000)->Unit(benchmark::kMillisecond);
BENCHMARK(InsertByExecuteSentence)->Arg(10000)->Arg(300000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace Norvik::Bench

BENCHMARK_MAIN();
