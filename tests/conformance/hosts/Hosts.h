#pragma once

#include <memory>
#include <string>

#include "conformance/HostAdapter.h"

namespace Norvik::Conformance {

std::unique_ptr<HostAdapter> MakeAgentHostAdapter();
/// A good host with one fault; "none" has none.
std::unique_ptr<HostAdapter> MakeFaultyHost(const std::string& fault);

}  // namespace Norvik::Conformance
