#include "cli/commands/SupportBundle.h"

#include <sys/utsname.h>

#include <algorithm>
#include <boost/version.hpp>
#include <iterator>
#include <ostream>
#include <string_view>

#include "cli/commands/Commands.h"
#include "cli/commands/HealthOptionsOf.h"
#include "cli/commands/Rendering.h"
#include "cli/commands/StatusReport.h"
#include "common/files/Paths.h"
#include "common/identification/HostInfoProvider.h"
#include "common/text/Text.h"
#include "host/HostError.h"
#include "host/health/HealthReport.h"
#include "host/server/CurlLibrary.h"
#include "host/support/DataFolderContent.h"
#include "host/support/SupportBundle.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

using Kind = BundleFile::Kind;

/// Checks that ask the server.
constexpr std::string_view NET_CHECKS[] = {"server-name",      "server-connection", "server-trust",
                                           "certificate-days", "server-answer",     "enrolment",
                                           "clock-skew"};

/// The version, or why the library cannot be used.
std::string CurlVersion() {
  try {
    return Curl().version();
  } catch (const std::runtime_error& error) {
    return error.what();
  }
}

OrderedJson Versions() {
  utsname system{};
  ::uname(&system);
  return {{"agent", Common::GetAgentVersion()},
          {"system", system.sysname},
          {"kernel", system.release},
          {"architecture", system.machine},
          {"curl", CurlVersion()},
          {"boost", BOOST_LIB_VERSION}};
}

OrderedJson Health(const CommandLine& line) {
  std::vector<HealthCheck> checks;
  std::copy_if(HealthChecks().begin(), HealthChecks().end(), std::back_inserter(checks),
               [](const HealthCheck& check) {
                 return std::find(std::begin(NET_CHECKS), std::end(NET_CHECKS), check.name) ==
                        std::end(NET_CHECKS);
               });
  return ToJson(ExamineHealth(HealthOptionsOf(line), checks));
}

template <class Make>
void Add(const std::string& name, BundleContent& content, Make make) {
  try {
    content.files.push_back({name, Kind::JSON, JsonLine(make()), 0});
  } catch (const std::exception& error) {
    content.leftOut.push_back({name, ReasonOf(error)});
  }
}

std::string ToText(const std::string& file, const OrderedJson& contents) {
  std::vector<std::vector<OrderedJson>> rows;
  for (const auto& entry : contents["files"]) {
    rows.push_back({entry["name"], SizeText(entry["bytes"])});
  }
  std::string text = TableText(rows);
  for (const auto& note : contents["leftOut"]) {
    text += "left out: " + Common::EscapeControls(note["name"].get<std::string>()) + ": " +
            Common::EscapeControls(note["why"].get<std::string>()) + "\n";
  }
  return text + "written to " + Common::EscapeControls(file) + "\n";
}

}  // namespace

int WriteSupportBundle(const CommandLine& line, std::ostream& output) {
  // The library's log would mix with the answer.
  const LoggerScope silence(std::make_shared<ListeningLogger>(nullptr, LogListener()));
  BundleContent content;
  Common::Paths::SetDataFolder(line.agent.dataFolder);
  Add("versions.json", content, Versions);
  // Finds out which folder the running agent uses.
  Add("status.json", content, [&] { return StatusOf(line); });
  Add("doctor.json", content, [&] { return Health(line); });
  const auto folder = Common::Paths(Common::Paths::DATA, false).AppData();
  AddDataFolder(folder, MAX_BUNDLE, content);
  const OrderedJson contents = Host::WriteSupportBundle(folder, std::move(content), line.bundle);
  output << (line.json ? JsonLine(contents) : ToText(line.bundle.string(), contents));
  return EXIT_DONE;
}

}  // namespace Norvik::Cli
