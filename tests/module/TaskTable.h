#pragma once

#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/replace.hpp>
#include <regex>

#include "common/action/ActionParameters.h"
#include "common/action/ActionResponse.h"
#include "common/action/TaskResponseInfo.h"
#include "support/Test.h"

namespace Norvik::Tests {

/// What docs/server-protocol.md says of the action of a task.
struct TaskRow {
  std::string name, parameters, states, answer;
};

/// All rows of the page by their codes.
inline const std::map<unsigned int, TaskRow>& TaskTable() {
  static const auto table = [] {
    const std::regex row(R"(\| (\d+) \| `(\w+)` \| ([^|]+) \| ([^|]+) \| ([^|]+) \| [^|]+ \|)");
    std::map<unsigned int, TaskRow> rows;
    std::istringstream page(ContentOf(NORVIK_SOURCE_DIR "/docs/server-protocol.md"));
    std::smatch cells;
    for (std::string line; std::getline(page, line);) {
      if (!std::regex_match(line, cells, row)) continue;
      const auto code = static_cast<unsigned int>(std::stoul(cells[1]));
      EXPECT_TRUE(rows.emplace(code, TaskRow{cells[2], cells[3], cells[4], cells[5]}).second)
          << line;
    }
    return rows;
  }();
  return table;
}

/// Whether a run may report these states: "7 2+ or 8" becomes the expression "72+|8".
inline bool AreListed(const std::vector<Common::TaskResponseInfo>& statuses, std::string cell) {
  std::string states;
  for (const auto& status : statuses) states += std::to_string(status.status);
  cell.resize(std::min(cell.size(), cell.find(';')));
  for (const char* word : {"none", " or ", " "}) {
    boost::replace_all(cell, word, word == std::string(" or ") ? "|" : "");
  }
  return std::regex_match(states, std::regex(cell));
}

/// Whether a response is an answer to the server as the page says.
inline bool IsListed(const Common::ActionResponse& response, const std::string& cell) {
  const bool rows = !response.table.Rows().empty();
  const bool text = response.text.has_value();
  if (cell == "rows") return rows || text;
  if (cell == "rows, if any") return !response.success;
  if (cell == "outcome") return response.success != text && !rows;
  if (cell == "refusal") return text && !rows && !response.success;
  if (cell == "failure") return !rows && !response.success;
  return cell == "never" && !rows && !text && !response.success;
}

/// The cell of a parameter: "`kobIncremental` bool".
struct ListedAs : boost::static_visitor<std::string> {
  std::string operator()(bool) const { return " bool"; }
  std::string operator()(unsigned long long) const { return " uint64"; }
  template <class Other>
  std::string operator()(const Other&) const {
    return "";
  }
};

/// Checks a run of an action against its row.
inline void ExpectAsListed(unsigned int code, const Common::ActionParameters& parameters,
                           const std::vector<Common::TaskResponseInfo>& statuses,
                           const Common::ActionResponse& response) {
  ASSERT_EQ(TaskTable().count(code), 1u) << code;
  const TaskRow& row = TaskTable().at(code);
  EXPECT_TRUE(AreListed(statuses, row.states)) << code << " " << statuses.size();
  EXPECT_TRUE(IsListed(response, row.answer)) << code << " " << row.answer;
  const std::string missing = "Invalid Parameter ";
  if (response.text && boost::starts_with(*response.text, missing)) {
    EXPECT_THAT(row.parameters, HasSubstr("**`" + response.text->substr(missing.size()) + "`**"));
  }
  for (const auto& [name, value] : parameters.Values()) {
    // Texts that no action reads are in the tests on purpose.
    const std::string type = boost::apply_visitor(ListedAs(), value);
    if (row.parameters == "any" || (type.empty() && name == "other")) continue;
    if (boost::starts_with(name, "ParameterTask")) continue;
    EXPECT_TRUE(std::regex_search(row.parameters, std::regex("`" + name + "`(\\*\\*)?" + type)))
        << code << " " << name << type;
  }
}

}  // namespace Norvik::Tests
