#include "host/ledger/LedgerTable.h"

#include <algorithm>
#include <string>
#include <utility>

#include "common/database/DataBase.h"

namespace Norvik::Host {

using Common::V2::DataBase;

namespace {

bool IsText(const OrderedJson& object, const char* key) {
  return object.is_object() && object.contains(key) && object[key].is_string();
}

bool HasTime(const OrderedJson& object) {
  return object.is_object() && object.contains("milliseconds") &&
         object["milliseconds"].is_number_integer();
}

bool IsTool(const OrderedJson& tool) {
  return HasTime(tool) && IsText(tool, "command") && IsText(tool, "outcome");
}

/// Whether this is a list, and each element as it has to be.
template <class Check>
bool IsListOf(const OrderedJson& object, const char* key, Check check) {
  if (!object.contains(key) || !object[key].is_array()) return false;
  return std::all_of(object[key].begin(), object[key].end(), check);
}

bool IsSection(const OrderedJson& section) {
  const auto isKey = [](const OrderedJson& key) { return key.is_string(); };
  return HasTime(section) && IsListOf(section, "keys", isKey) && !section["keys"].empty() &&
         IsListOf(section, "tools", IsTool);
}

/// What readers rely on: the row may be damaged, or of another version.
bool IsRun(const OrderedJson& run) {
  return HasTime(run) && IsText(run, "begun") && IsListOf(run, "sections", IsSection) &&
         run.contains("records") && run["records"].is_object();
}

}  // namespace

void WriteLedgerRun(const OrderedJson& run) {
  DataBase dataBase;
  const auto text = run.dump(-1, ' ', false, OrderedJson::error_handler_t::replace);
  dataBase.ExecuteSentence("insert into LEDGER(run) values('{1}')", {text});
  dataBase.ExecuteSentence("delete from LEDGER where id <= (select max(id) from LEDGER) - " +
                           std::to_string(LEDGER_RUNS));
  dataBase.Commit();
}

std::vector<OrderedJson> ReadLedgerRuns() {
  std::vector<OrderedJson> runs;
  if (!DataBase::ExistTable("LEDGER")) return runs;
  for (const auto& row : DataBase().ExecuteSentence("select run from LEDGER order by id desc")) {
    OrderedJson run = OrderedJson::parse(boost::get<std::string>(row.at(0)), nullptr, false);
    if (IsRun(run)) runs.push_back(std::move(run));
  }
  return runs;
}

}  // namespace Norvik::Host
