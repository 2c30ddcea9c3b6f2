#pragma once

#include <boost/optional.hpp>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "common/Api.h"
#include "common/action/ActionPropertyValue.h"

namespace Norvik::Common {

/// The rows that an action lists. Rows may differ in their number of cells.
class NORVIK_COMMON_API ActionResponseTable {
 public:
  using Row = std::vector<ActionPropertyValue>;

  /// Sets whether the first row holds the titles of the columns.
  void HasTitles(bool titles) { hasTitles_ = titles; }
  void AddNewRow() { rows_.emplace_back(); }
  /// Appends a cell to the last row, after adding a first row if the table has no rows.
  void AddCellToLastRow(const ActionPropertyValue& value) {
    if (rows_.empty()) AddNewRow();
    rows_.back().push_back(value);
  }
  void AddRow(const Row& row) { rows_.push_back(row); }
  void AddRow(Row&& row) { rows_.push_back(std::move(row)); }

  const std::vector<Row>& Rows() const { return rows_; }
  bool HasTitles() const { return hasTitles_; }

 private:
  std::vector<Row> rows_;
  bool hasTitles_ = false;
};

/// The result of a handler. A handler with nothing to report returns a default response; failures
/// of tasks are reported as statuses (see `ActionPerformerBase`).
struct NORVIK_COMMON_API ActionResponse {
  ActionResponse() = default;
  ActionResponse(const ActionResponse&) = default;
  ActionResponse(ActionResponse&&) = default;
  ActionResponse& operator=(const ActionResponse&) = default;
  ActionResponse& operator=(ActionResponse&&) = default;
  virtual ~ActionResponse();

  std::int32_t result = 0;
  ActionResponseTable table;
  boost::optional<std::string> text;  ///< the reason of a failure; empty on success
  std::uint64_t extra = 0;            ///< passed on unchanged, without a meaning here
  /// Whether a started program succeeded. Fills a whole word of the record.
  alignas(std::uint64_t) bool success = false;
};

}  // namespace Norvik::Common
