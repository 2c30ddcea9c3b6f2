#pragma once

#include <boost/optional.hpp>
#include <cstdint>
#include <string>
#include <vector>

#include "common/Api.h"
#include "common/action/ActionPropertyValue.h"

namespace Norvik::Common {

/// Rows of a listing action.
class NORVIK_COMMON_API ActionResponseTable {
 public:
  using Row = std::vector<ActionPropertyValue>;

  /// Says whether the first row holds the column titles.
  void HasTitles(bool titles) { hasTitles_ = titles; }
  void AddNewRow() { rows_.emplace_back(); }
  /// Appends to the last row; makes the first row if there is none.
  void AddCellToLastRow(const ActionPropertyValue& value) {
    if (rows_.empty()) AddNewRow();
    rows_.back().push_back(value);
  }
  void AddRow(const Row& row) { rows_.push_back(row); }

  const std::vector<Row>& Rows() const { return rows_; }
  bool HasTitles() const { return hasTitles_; }

 private:
  std::vector<Row> rows_;
  bool hasTitles_ = false;
};

/// What a handler answers. A handler that has nothing to say returns a default response.
struct NORVIK_COMMON_API ActionResponse {
  ActionResponse() = default;
  ActionResponse(const ActionResponse&) = default;
  ActionResponse(ActionResponse&&) = default;
  ActionResponse& operator=(const ActionResponse&) = default;
  ActionResponse& operator=(ActionResponse&&) = default;
  virtual ~ActionResponse();

  std::int32_t result = 0;
  ActionResponseTable table;
  boost::optional<std::string> text;  ///< reason of a failure; empty on success
  std::uint64_t extra = 0;            ///< carried along, given no meaning here
  /// Outcome of a started process. Takes a whole word of the record's layout.
  alignas(std::uint64_t) bool success = false;
};

}  // namespace Norvik::Common
