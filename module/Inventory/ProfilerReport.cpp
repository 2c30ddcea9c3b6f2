#include "module/Inventory/ProfilerReport.h"

#include "common/apple/MacXMLToJSONParser.h"
#include "common/commands/CommandRunner.h"

namespace Norvik::KOB {

using boost::property_tree::ptree;

ptree ReadProfilerReport(const std::string& output) {
  ptree tree;
  Common::MacXMLToJSONParser(output, tree).Parse("plist.array");
  return tree;
}

ptree ProfilerReportOf(const char* command) {
  return ReadProfilerReport(Common::CommandRunner::ExecCommand(command));
}

const ptree& ChildOrEmpty(const ptree& node, const char* name) {
  static const ptree empty;
  const auto child = node.get_child_optional(name);
  return child ? *child : empty;
}

}  // namespace Norvik::KOB
