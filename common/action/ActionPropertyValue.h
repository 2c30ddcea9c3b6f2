#pragma once

#include <wx/string.h>

#include <boost/variant.hpp>
#include <boost/variant/recursive_wrapper.hpp>
#include <chrono>
#include <string>

#include "common/configuration/AgentConfigurationInfo.h"

namespace Norvik::Common {

/// A point in time between host and module. Its resolution is fixed, because that of the clock
/// itself differs between systems.
using ActionTimePoint =
    std::chrono::time_point<std::chrono::system_clock, std::chrono::microseconds>;

/// The value of a parameter or of a cell of a response. The order of the types is part of the
/// contract. A configuration is held by pointer, as a listing has hundreds of thousands of cells
/// and each would be as large as a configuration; `boost::get` and visitors still see the type.
/// Write texts as `wxString("x")` or `std::string("x")`: a plain literal would become a `bool`.
using ActionPropertyValue =
    boost::variant<bool, unsigned int, unsigned long long, int, long long, float, double, wxString,
                   boost::recursive_wrapper<AgentConfigurationInfo>, std::string, ActionTimePoint>;

static_assert(sizeof(ActionPropertyValue) <= 64, "a listing has hundreds of thousands of cells");

struct ActionSystemTypes {
  /// The value as a `T`, without conversion. Throws `boost::bad_get` if it holds another type.
  template <class T>
  static const T& GetVariantPropertyValue(const ActionPropertyValue& value) {
    return boost::get<T>(value);
  }
};

}  // namespace Norvik::Common
