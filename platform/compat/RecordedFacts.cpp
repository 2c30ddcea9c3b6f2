#include "platform/compat/Recording.h"

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <system_error>

#include "platform/compat/PropertyListReader.h"

namespace Norvik::Platform {

namespace {

using nlohmann::json;

/// A discarded value if the file is no JSON.
json ReadJson(const std::string& path) {
  return json::parse(ReadFileBytes(path), nullptr, /*allow_exceptions=*/false);
}

std::string TextAt(const json& node, const char* key) {
  const auto found = node.find(key);
  return found != node.end() && found->is_string() ? found->get<std::string>() : std::string();
}

double NumberAt(const json& node, const char* key) {
  const auto found = node.find(key);
  return found != node.end() && found->is_number() ? found->get<double>() : 0.0;
}

RecordedProcess ProcessFrom(const json& node) {
  RecordedProcess process;
  const auto pid = node.find("pid");
  if (pid != node.end() && pid->is_number_integer()) process.pid = pid->get<int>();
  process.name = TextAt(node, "name");
  process.path = TextAt(node, "path");
  const auto footprint = node.find("footprint");
  if (footprint != node.end() && footprint->is_number_unsigned()) {
    process.footprint = footprint->get<std::uint64_t>();
  }
  return process;
}

RecordedFix FixFrom(const json& node) {
  RecordedFix fix;
  constexpr double DAY = 86400.0;
  const double seconds = std::min(std::max(NumberAt(node, "afterSeconds"), 0.0), DAY);
  fix.after = std::chrono::milliseconds(static_cast<long long>(seconds * 1000));
  fix.fix = {NumberAt(node, "latitude"), NumberAt(node, "longitude"), NumberAt(node, "altitude"),
             NumberAt(node, "speed")};
  return fix;
}

bool Exists(const std::string& path) {
  std::error_code unknown;
  return !path.empty() && std::filesystem::exists(path, unknown);
}

}  // namespace

std::optional<std::vector<RecordedProcess>> RecordedProcesses() {
  const std::string file = RecordingFile("processes.json");
  if (!Exists(file)) return {};
  std::vector<RecordedProcess> processes;
  for (const json& node : ReadJson(file)) {
    if (node.is_object()) processes.push_back(ProcessFrom(node));
  }
  return processes;
}

RecordedLocation ReadRecordedLocation() {
  RecordedLocation location;
  const json root = ReadJson(RecordingFile("location.json"));
  if (!root.is_object()) return location;
  const auto enabled = root.find("enabled");
  location.enabled = enabled != root.end() && *enabled == true;
  const auto fixes = root.find("fixes");
  if (fixes == root.end()) return location;
  for (const json& node : *fixes) {
    if (node.is_object()) location.fixes.push_back(FixFrom(node));
  }
  return location;
}

}  // namespace Norvik::Platform
