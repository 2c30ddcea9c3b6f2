#include "module/Actions/Mac/RemoteRequest.h"

#include <wx/string.h>

#include <boost/format.hpp>
#include <iterator>

#include "common/text/Text.h"

namespace Norvik::KOB {

bool Requires(const Common::ActionParameters& parameters, const char* name,
              Common::ActionResponse& response) {
  if (parameters.Exist(name)) return true;
  response.text = (boost::format("Invalid Parameter %1%") % name).str();
  return false;
}

std::string ReadText(Common::ActionParameters& parameters, const char* name) {
  return Common::ToUtf8(parameters.Get<wxString>(name));
}

void AddTitles(Common::ActionResponseTable& table, const std::vector<std::string>& titles) {
  for (const auto& title : titles) table.AddCellToLastRow(title);
  table.HasTitles(true);
}

void AddTextRow(Common::ActionResponseTable& table, std::vector<std::string> cells) {
  table.AddRow(Common::ActionResponseTable::Row(std::make_move_iterator(cells.begin()),
                                                std::make_move_iterator(cells.end())));
}

}  // namespace Norvik::KOB
