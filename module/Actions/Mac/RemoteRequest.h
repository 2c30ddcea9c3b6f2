#pragma once

#include <string>
#include <vector>

#include "common/action/ActionParameters.h"
#include "common/action/ActionResponse.h"

namespace Norvik::KOB {

/// Whether the request has the parameter. If not, the response's text says so.
bool Requires(const Common::ActionParameters& parameters, const char* name,
              Common::ActionResponse& response);

/// A parameter in UTF-8. Throws `boost::bad_get` if it is no text.
std::string ReadText(Common::ActionParameters& parameters, const char* name);

/// Makes the titles the table's first row.
void AddTitles(Common::ActionResponseTable& table, const std::vector<std::string>& titles);
void AddTextRow(Common::ActionResponseTable& table, std::vector<std::string> cells);

}  // namespace Norvik::KOB
