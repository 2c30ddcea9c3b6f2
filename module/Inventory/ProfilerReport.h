#pragma once

#include <boost/property_tree/ptree.hpp>
#include <string>

namespace Norvik::KOB {

/// The tree of a `system_profiler -xml` output: its child "array" holds one dictionary for each
/// type of data, with the type's records under "_items". Without "array" for any other text.
boost::property_tree::ptree ReadProfilerReport(const std::string& output);
/// The same of what a command prints.
boost::property_tree::ptree ProfilerReportOf(const char* command);

/// The child of a name; a node without children if there is none.
const boost::property_tree::ptree& ChildOrNothing(const boost::property_tree::ptree& node,
                                                  const char* name);

}  // namespace Norvik::KOB
