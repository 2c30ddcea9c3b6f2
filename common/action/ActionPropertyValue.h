#pragma once

#include <wx/string.h>

#include <boost/variant.hpp>
#include <chrono>
#include <string>

#include "common/configuration/AgentConfigurationInfo.h"

namespace Norvik::Common {

/// A point in time of the host interface. The resolution is fixed because the clock's own differs
/// between systems.
using ActionTimePoint =
    std::chrono::time_point<std::chrono::system_clock, std::chrono::microseconds>;

/// Value of an action's parameter or of a response's cell. Wrap a text explicitly
/// (`wxString("x")`, `std::string("x")`): a bare literal would become a `bool`.
using ActionPropertyValue =
    boost::variant<bool, unsigned int, unsigned long long, int, long long, float, double, wxString,
                   AgentConfigurationInfo, std::string, ActionTimePoint>;

struct ActionSystemTypes {
  /// The value as a `T`. Raises `boost::bad_get` if it holds another type.
  template <class T>
  static const T& GetVariantPropertyValue(const ActionPropertyValue& value) {
    return boost::get<T>(value);
  }
};

}  // namespace Norvik::Common
