#pragma once

#include <wx/string.h>

#include <boost/variant.hpp>
#include <chrono>
#include <string>

#include "common/configuration/AgentConfigurationInfo.h"

namespace Norvik::Common {

/// A point in time between host and module. Its resolution is fixed, because that of the clock
/// itself differs between systems.
using ActionTimePoint =
    std::chrono::time_point<std::chrono::system_clock, std::chrono::microseconds>;

/// The value of a parameter or of a cell of a response. The order of the types is part of the
/// contract. Write texts as `wxString("x")` or `std::string("x")`: a plain literal would become a
/// `bool`.
using ActionPropertyValue =
    boost::variant<bool, unsigned int, unsigned long long, int, long long, float, double, wxString,
                   AgentConfigurationInfo, std::string, ActionTimePoint>;

struct ActionSystemTypes {
  /// The value as a `T`, without conversion. Throws `boost::bad_get` if it holds another type.
  template <class T>
  static const T& GetVariantPropertyValue(const ActionPropertyValue& value) {
    return boost::get<T>(value);
  }
};

}  // namespace Norvik::Common
