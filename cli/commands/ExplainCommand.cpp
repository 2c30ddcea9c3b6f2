#include <boost/filesystem/operations.hpp>
#include <ostream>

#include "cli/commands/Commands.h"
#include "cli/commands/Rendering.h"
#include "cli/commands/ScanExplanation.h"
#include "common/text/Text.h"
#include "host/configuration/ConfigurationFile.h"
#include "host/configuration/ConfigurationWarnings.h"
#include "host/data/DataFolder.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

namespace fs = boost::filesystem;

/// Absolute and without "." and "..". Links are not resolved, because the result depends on them.
std::string FullPath(const fs::path& given) {
  std::string path = fs::absolute(given).lexically_normal().string();
  for (const std::string ending : {"/.", "/"}) {
    if (path.size() > ending.size() && path.substr(path.size() - ending.size()) == ending) {
      path.resize(path.size() - ending.size());
    }
  }
  return path;
}

}  // namespace

int RunExplain(const CommandLine& line, std::ostream& output, std::ostream& errors) {
  const auto configuration =
      ReadConfiguration(line.agent.configurationFile, line.agent.dataFolder / CONFIGURATION_FILE);
  const Common::ScanRules rules(*configuration.values.kob);
  if (WantsNoFile(*configuration.values.kob)) {
    errors << MessageLine(line.json, NO_FILE_WANTED) << std::flush;
  }
  const std::string path = FullPath(line.file);
  const ScanExplanation explanation = ExplainScan(rules, path);
  if (line.json) {
    output << JsonLine({{"path", path},
                        {"listed", explanation.listed},
                        {"rule", explanation.rule},
                        {"reason", explanation.reason}});
  } else {
    output << Common::EscapeControls(path)
           << (explanation.listed ? " would be listed: " : " would not be listed: ")
           << explanation.reason << std::endl;
  }
  return EXIT_DONE;
}

}  // namespace Norvik::Cli
