#pragma once

#include <boost/property_tree/ptree.hpp>
#include <string>

namespace Norvik::KOB {

/// The tree of a `system_profiler -xml` output. Its child "array" holds one dictionary per data
/// type, with the records of the type under "_items". For any other text the tree has no "array".
boost::property_tree::ptree ReadProfilerReport(const std::string& output);
/// The same for the output of a command, which this function runs.
boost::property_tree::ptree ProfilerReportOf(const char* command);

/// The child with this name; an empty node if it is absent. The result is valid as long as `node`.
const boost::property_tree::ptree& ChildOrEmpty(const boost::property_tree::ptree& node,
                                                const char* name);

}  // namespace Norvik::KOB
