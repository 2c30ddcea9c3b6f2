#include <iostream>
#include <nlohmann/json.hpp>

#include "receiver/commands/Commands.h"
#include "receiver/search/Expression.h"

namespace Norvik::Receiver {

namespace {

constexpr long long PAGE = 5000;

/// The place of a row in the log of changes, "TRANSACTION-NUMBER".
struct Cursor {
  long long transaction = -1;
  long long number = -1;
};

Cursor CursorOf(const std::string& text) {
  Cursor cursor;
  if (text.empty()) return cursor;
  const auto dash = text.find('-');
  const auto isNumber = [](const std::string& digits) {
    return !digits.empty() && digits.size() < 19 &&
           digits.find_first_not_of("0123456789") == std::string::npos;
  };
  if (dash == std::string::npos || !isNumber(text.substr(0, dash)) ||
      !isNumber(text.substr(dash + 1))) {
    throw UsageError("--since takes a cursor that export has printed, not " + text);
  }
  return {std::stoll(text.substr(0, dash)), std::stoll(text.substr(dash + 1))};
}

}  // namespace

int Search(const Place& place, const SearchOptions& options) {
  const Condition condition = ConditionOf(options.expression);
  Session session = place.Open();
  const std::string where = "WHERE a.state='enrolled' AND " + condition.statement;
  if (options.counts) {
    PrintRows(place, {"machines#"},
              session.Rows<1>("SELECT count(*) FROM agents a " + where, condition.values));
    return 0;
  }
  Values values = condition.values;
  values.emplace_back(options.limit);
  PrintRows(place, {"agent", "hostName", "serialNumber", "model", "lastContact#"},
            session.Rows<5>("SELECT a.agent, a.host_name, a.serial_number, a.model, c.last_contact "
                            "FROM agents a JOIN contacts c ON c.agent=a.agent " +
                                where + " ORDER BY a.host_name, a.agent LIMIT ?",
                            values));
  return 0;
}

int ListAside(const Place& place, const std::string& agent) {
  Session session = place.Open();
  const std::string rows =
      "SELECT agent, {number as text}, sha256, name, received, reason FROM uploads "
      "WHERE state='aside'";
  PrintRows(place, {"agent", "number#", "sha256", "name", "received#", "reason"},
            agent.empty() ? session.Rows<6>(rows + " ORDER BY number")
                          : session.Rows<6>(rows + " AND agent=? ORDER BY number", {agent}));
  return 0;
}

int Export(const Place& place, const ExportOptions& options) {
  Cursor cursor = CursorOf(options.since);
  Session session = place.Open();
  long long left = options.limit;
  while (left != 0) {
    const long long wanted = left < 0 || left > PAGE ? PAGE : left;
    const auto rows = session.Rows<7>(
        "SELECT txn, {number as text}, agent, time, kind, section, body FROM changes "
        "WHERE (txn, number) > (CAST(? AS BIGINT), CAST(? AS BIGINT)) AND txn < {horizon} "
        "ORDER BY txn, number LIMIT ?",
        {cursor.transaction, cursor.number, wanted});
    std::string lines;
    for (const auto& [transaction, number, agent, time, kind, section, body] : rows) {
      // The body is JSON already, and the other values need no escapes.
      lines += "{\"cursor\":\"" + transaction + "-" + number + "\",\"agent\":\"" + agent +
               "\",\"time\":" + time + ",\"inventory\":\"" + kind + "\",\"section\":\"" + section +
               "\",\"data\":" + body + "}\n";
      cursor = {std::stoll(transaction), std::stoll(number)};
    }
    std::cout << lines << std::flush;
    if (!std::cout) throw std::runtime_error("The output cannot be written");
    if (left > 0) left -= static_cast<long long>(rows.size());
    if (static_cast<long long>(rows.size()) < wanted) break;
  }
  return 0;
}

}  // namespace Norvik::Receiver
