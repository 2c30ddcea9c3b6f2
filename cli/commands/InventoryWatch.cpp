#include "cli/commands/InventoryWatch.h"

#include <boost/algorithm/string/predicate.hpp>
#include <utility>

namespace Norvik::Cli {

using namespace Host;

namespace {

using Common::Logger;
using std::chrono::steady_clock;

constexpr char RETRIEVAL[] = "Retrieving ";
constexpr char FALLBACK[] = "KOB incremental will not be sent";
constexpr char NO_CHANGES[] = "No new updates";

struct SectionPlace {
  const char* name;
  std::vector<std::string> keys;
};

/// The document's keys of the sections, by their names in the log.
const std::vector<SectionPlace>& Places() {
  static const std::vector<SectionPlace> places = {{"network adapters", {"networkAdapter"}},
                                                   {"setup", {"setup", "portConnectors"}},
                                                   {"operating system", {"os"}},
                                                   {"system", {"device"}},
                                                   {"Users", {"user", "group"}},
                                                   {"memory", {"memorySlot"}},
                                                   {"cdrom", {"cdrom"}},
                                                   {"configuration", {"agentConfiguration"}},
                                                   {"device", {"device"}},
                                                   {"hardware", {"drivers"}},
                                                   {"feature", {"features"}},
                                                   {"Geolocation", {"location"}},
                                                   {"local user", {"user", "group"}},
                                                   {"keyboard", {"keyboard"}},
                                                   {"monitor", {"displays"}},
                                                   {"network drives", {"unitMappings"}},
                                                   {"printer", {"printer"}},
                                                   {"run command", {"startupCommand"}},
                                                   {"service", {"service"}},
                                                   {"shared resources", {"sharedResources"}},
                                                   {"bios", {"bios"}},
                                                   {"boardslots", {"boards"}},
                                                   {"video", {"videoCards"}},
                                                   {"software registered", {"software"}},
                                                   {"physical disk", {"disk"}},
                                                   {"processor", {"processorSlot"}}};
  return places;
}

std::string SectionName(const std::string& text) {
  std::string name = text.substr(sizeof(RETRIEVAL) - 1);
  for (const std::string ending : {" section", " Information"}) {
    if (boost::ends_with(name, ending)) name.resize(name.size() - ending.size());
  }
  return name;
}

std::vector<std::string> KeysOf(const std::string& name) {
  for (const auto& place : Places()) {
    if (name == place.name) return place.keys;
  }
  return {};
}

}  // namespace

InventoryWatch::InventoryWatch(SectionStarts onSection) : onSection_(std::move(onSection)) {}

void InventoryWatch::See(const LogLine& line) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (boost::starts_with(line.text, RETRIEVAL)) {
    Start(line);
  } else if (line.text == ">>") {
    ++depth_;
  } else if (line.text == "<<") {
    // What leaves more often than it entered is the function that retrieves the section.
    if (--depth_ < 0) EndOpenSection();
  } else if (boost::starts_with(line.text, FALLBACK)) {
    fallbackReason_ = lastReason_.empty() ? "the comparison failed" : lastReason_;
  }
  const bool error = line.level == Logger::LEVEL_ERROR;
  if (error) problems_.push_back(line.text);
  if (error || boost::starts_with(line.text, NO_CHANGES)) lastReason_ = line.text;
}

void InventoryWatch::Start(const LogLine& line) {
  EndOpenSection();
  const std::string name = SectionName(line.text);
  sections_.push_back({name, KeysOf(name), 0});
  open_ = true;
  depth_ = 0;
  openSince_ = steady_clock::now();
  if (onSection_) onSection_(name);
}

void InventoryWatch::EndOpenSection() {
  if (!open_) return;
  open_ = false;
  const std::chrono::duration<double> taken = steady_clock::now() - openSince_;
  sections_.back().seconds = taken.count();
}

std::vector<RetrievedSection> InventoryWatch::Sections() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return sections_;
}

std::vector<std::string> InventoryWatch::Problems() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return problems_;
}

std::string InventoryWatch::FallbackReason() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return fallbackReason_;
}

}  // namespace Norvik::Cli
