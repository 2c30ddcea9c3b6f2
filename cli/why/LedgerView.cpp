#include "cli/why/LedgerView.h"

#include <algorithm>
#include <boost/algorithm/string/join.hpp>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/filesystem/operations.hpp>
#include <cstdint>
#include <map>

#include "common/database/AgentDatabase.h"
#include "common/text/Text.h"
#include "host/ledger/LedgerTable.h"

namespace Norvik::Cli {

namespace {

bool Holds(const OrderedJson& section, const std::string& key) {
  const auto& keys = section["keys"];
  return std::count(keys.begin(), keys.end(), key) > 0;
}

std::int64_t MillisecondsOf(const OrderedJson& item) { return item["milliseconds"]; }

bool IsFaster(const OrderedJson& one, const OrderedJson& other) {
  return MillisecondsOf(one) < MillisecondsOf(other);
}

/// Null if the list is empty.
OrderedJson SlowestOf(const OrderedJson& list) {
  const auto found = std::max_element(list.begin(), list.end(), IsFaster);
  return found == list.end() ? OrderedJson() : *found;
}

std::string NameOf(const OrderedJson& section) {
  return boost::algorithm::join(section["keys"].get<std::vector<std::string>>(), ", ");
}

/// Adds a tool of one run, unless it ended well.
void AddTrouble(const OrderedJson& tool, OrderedJson& trouble) {
  if (tool["outcome"] == "done") return;
  const auto known = std::find_if(trouble.begin(), trouble.end(), [&](const auto& item) {
    return item["command"] == tool["command"];
  });
  if (known != trouble.end()) {
    (*known)["runs"] = (*known)["runs"].get<int>() + 1;
  } else {
    trouble.push_back({{"command", tool["command"]}, {"outcome", tool["outcome"]}, {"runs", 1}});
  }
}

/// Those that held the inventory up, with their outcomes; empty without any.
std::string HindrancesText(const OrderedJson& trouble) {
  std::string text;
  for (const auto& tool : trouble) {
    if (!HeldUp(tool)) continue;
    text += (text.empty() ? "" : "; ") + tool["command"].get<std::string>() + " (" +
            tool["outcome"].get<std::string>() + ")";
  }
  return Common::EscapeControls(text);
}

}  // namespace

Ledger ReadLedger(const boost::filesystem::path& dataFolder) {
  using Common::AgentDatabase;
  Ledger ledger;
  try {
    if (boost::filesystem::exists(dataFolder / Common::SQLiteNames::SQLITE_CURRENT_DATABASE_NAME)) {
      const AgentDatabase dataBase(dataFolder, AgentDatabase::Access::ReadOnly);
      ledger.runs = Host::ReadLedgerRuns();
    }
    if (ledger.runs.empty()) ledger.problem = "no run is recorded in " + dataFolder.string();
  } catch (const std::exception& error) {
    ledger.problem = error.what();
  }
  return ledger;
}

OrderedJson LastOf(const std::string& section, const Ledger& ledger) {
  for (const auto& run : ledger.runs) {
    for (const auto& retrieved : run["sections"]) {
      if (!Holds(retrieved, section)) continue;
      OrderedJson with = OrderedJson::array();
      for (const auto& key : retrieved["keys"]) {
        if (key != section) with.push_back(key);
      }
      const auto& records = run["records"];
      return {{"begun", run["begun"]},
              {"records", records.contains(section) ? records[section] : OrderedJson()},
              {"milliseconds", retrieved["milliseconds"]},
              {"with", with},
              {"tools", retrieved["tools"]}};
    }
  }
  return nullptr;
}

OrderedJson TroubleOf(const std::string& section, const Ledger& ledger) {
  OrderedJson trouble = OrderedJson::array();
  for (const auto& run : ledger.runs) {
    for (const auto& retrieved : run["sections"]) {
      if (!section.empty() && !Holds(retrieved, section)) continue;
      for (const auto& tool : retrieved["tools"]) AddTrouble(tool, trouble);
    }
  }
  return trouble;
}

bool HeldUp(const OrderedJson& tool) {
  const std::string outcome = tool["outcome"];
  return outcome != "missing" && !boost::algorithm::starts_with(outcome, "exit code");
}

OrderedJson CostliestOf(const Ledger& ledger, std::size_t most) {
  std::map<OrderedJson, std::int64_t> sums;  // by the keys of the section
  for (const auto& run : ledger.runs) {
    for (const auto& section : run["sections"]) sums[section["keys"]] += MillisecondsOf(section);
  }
  OrderedJson list = OrderedJson::array();
  for (const auto& [keys, sum] : sums) {
    const OrderedJson last = LastOf(keys.at(0), ledger);
    const OrderedJson tool = SlowestOf(last["tools"]);
    list.push_back({{"keys", keys},
                    {"milliseconds", sum / static_cast<std::int64_t>(ledger.runs.size())},
                    {"last", last["milliseconds"]},
                    {"tool", tool.is_null() ? OrderedJson("") : tool["command"]}});
  }
  std::stable_sort(list.begin(), list.end(),
                   [](const auto& one, const auto& other) { return IsFaster(other, one); });
  if (list.size() > most) list.erase(list.begin() + static_cast<std::ptrdiff_t>(most), list.end());
  return list;
}

OrderedJson LastRunOf(const Ledger& ledger) {
  if (ledger.runs.empty()) return nullptr;
  const OrderedJson& run = ledger.runs.front();
  OrderedJson tools = OrderedJson::array();
  OrderedJson sections = OrderedJson::array();
  for (const auto& section : run["sections"]) {
    sections.push_back({{"keys", section["keys"]}, {"milliseconds", section["milliseconds"]}});
    for (const auto& tool : section["tools"]) tools.push_back(tool);
  }
  return {{"begun", run["begun"]},
          {"milliseconds", run["milliseconds"]},
          {"slowestSection", SlowestOf(sections)},
          {"slowestTool", SlowestOf(tools)},
          {"trouble", TroubleOf("", {{run}, ""})}};
}

std::string LastRunLines(const OrderedJson& lastRun) {
  if (lastRun.is_null()) return "";
  const auto time = [](const OrderedJson& item) {
    return std::to_string(MillisecondsOf(item)) + " ms";
  };
  std::string text = "last machine inventory: " + time(lastRun);
  const OrderedJson& section = lastRun["slowestSection"];
  if (!section.is_null()) text += ", slowest section " + NameOf(section) + " " + time(section);
  const OrderedJson& tool = lastRun["slowestTool"];
  if (!tool.is_null())
    text += ", slowest tool " + tool["command"].get<std::string>() + " " + time(tool);
  text = Common::EscapeControls(text) + "\n";
  const std::string tools = HindrancesText(lastRun["trouble"]);
  return tools.empty() ? text : text + "tools that held it up: " + tools + "\n";
}

}  // namespace Norvik::Cli
