#include "host/recording/Redaction.h"

#include <sodium.h>

#include <algorithm>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/filesystem/fstream.hpp>
#include <boost/filesystem/operations.hpp>
#include <cstdint>
#include <ctime>
#include <iterator>
#include <map>
#include <stdexcept>
#include <utility>
#include <vector>

#include "host/OutputText.h"
#include "host/redaction/BytesRedaction.h"
#include "host/redaction/DocumentRedaction.h"
#include "host/redaction/SensitiveFacts.h"
#include "host/redaction/SensitiveFirmware.h"
#include "host/redaction/SensitiveForms.h"
#include "host/redaction/SensitiveKeys.h"

namespace Norvik::Host {

namespace {

namespace fs = boost::filesystem;

std::string ContentOf(const fs::path& file) {
  fs::ifstream stream(file, std::ios::binary);
  if (!stream) throw std::runtime_error("cannot read " + file.string());
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// With the time that it had.
void Rewrite(const fs::path& file, const std::string& content) {
  const std::time_t time = fs::last_write_time(file);
  fs::ofstream stream(file, std::ios::binary);
  if (!stream.write(content.data(), static_cast<std::streamsize>(content.size())).flush()) {
    throw std::runtime_error("cannot write " + file.string());
  }
  stream.close();
  fs::last_write_time(file, time);
}

/// The entries below a folder, each folder before what is in it.
std::vector<fs::path> EntriesBelow(const fs::path& folder) {
  if (!fs::exists(folder)) return {};
  return {fs::recursive_directory_iterator(folder), fs::recursive_directory_iterator()};
}

/// Another place on Earth for each; equal ones stay equal, and (0, 0), which is no position, stays.
void RedactPosition(const fs::path& file) {
  static constexpr struct {
    const char* key;
    std::uint32_t most;  ///< in degrees or metres
  } NUMBERS[] = {{"latitude", 80}, {"longitude", 170}, {"altitude", 500}};
  if (!fs::exists(file)) return;
  OrderedJson location = OrderedJson::parse(ContentOf(file), nullptr, /*allow_exceptions=*/false);
  // A damaged file holds no position that could be read, but digits of it.
  if (!location.is_object() || !location["fixes"].is_array()) location = {{"enabled", false}};
  std::map<std::pair<std::string, double>, double> others;
  for (OrderedJson& fix : location["fixes"]) {
    for (const auto& [key, most] : NUMBERS) {
      if (!fix.is_object() || !fix.value(key, OrderedJson()).is_number()) continue;
      constexpr std::uint32_t STEPS = 1'000'000;
      const auto steps = static_cast<double>(::randombytes_uniform(2 * most * STEPS));
      const double other = (steps - static_cast<double>(most * STEPS)) / STEPS;
      const double value = fix[key];
      if (value != 0.0) fix[key] = others.emplace(std::pair(key, value), other).first->second;
    }
  }
  Rewrite(file, location.dump(1) + "\n");
}

void RedactNames(const fs::path& root, const BytesRedaction& redaction) {
  std::vector<fs::path> entries = EntriesBelow(root);
  std::reverse(entries.begin(), entries.end());
  for (const fs::path& entry : entries) {
    const std::time_t time = fs::last_write_time(entry.parent_path());
    if (fs::is_symlink(entry)) {
      const fs::path target = redaction.Apply(fs::read_symlink(entry).string());
      fs::remove(entry);
      fs::create_symlink(target, entry);
    }
    const std::string name = redaction.Apply(entry.filename().string());
    if (name != entry.filename()) fs::rename(entry, entry.parent_path() / name);
    fs::last_write_time(entry.parent_path(), time);
  }
}

}  // namespace

std::size_t RedactRecording(const fs::path& recording, const std::string& document) {
  std::vector<fs::path> files;
  for (const fs::path& entry : EntriesBelow(recording)) {
    if (fs::is_regular_file(fs::symlink_status(entry)) &&
        entry.parent_path() != recording / "bin") {
      files.push_back(entry);
    }
  }
  std::sort(files.begin(), files.end());
  const StandIns standIns(StandIns::NewSecret());
  BytesRedaction redaction(standIns);
  for (const fs::path& file : files) {
    const std::string content = ContentOf(file);
    ProtectKeys(file.filename().string(), content, redaction.replacements);
    redaction.AddDisplays(content);
  }
  const auto values = nlohmann::json::parse(document, nullptr, /*allow_exceptions=*/false);
  if (values.is_object()) AddValuesOfDocument(values, redaction.replacements);
  for (const fs::path& file : files) {
    const std::string content = ContentOf(file);
    AddValuesOfFacts(file.filename().string(), content, redaction.replacements);
    AddValuesOfSmbios(content, redaction.replacements);
    AddKeyedValues(content, redaction.replacements);
    // In a binary list the next value begins directly after a text.
    if (!boost::starts_with(content, "bplist")) AddForms(content, redaction.replacements);
  }
  for (const fs::path& entry : EntriesBelow(recording / "root")) {
    AddForms(entry.filename().string(), redaction.replacements);
  }
  for (const fs::path& file : files) Rewrite(file, redaction.Apply(ContentOf(file)));
  RedactPosition(recording / "location.json");
  RedactNames(recording / "root", redaction);
  return redaction.replacements.Count();
}

}  // namespace Norvik::Host
