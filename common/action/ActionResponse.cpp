#include "common/action/ActionResponse.h"

namespace Norvik::Common {

void ActionResponseTable::AddCellToLastRow(const ActionPropertyValue& value) {
  if (rows_.empty()) AddNewRow();
  rows_.back().push_back(value);
}

ActionResponse::~ActionResponse() = default;

}  // namespace Norvik::Common
