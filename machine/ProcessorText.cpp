#include "machine/ProcessorText.h"

#include <algorithm>
#include <boost/algorithm/string/predicate.hpp>
#include <map>
#include <set>

#include "common/text/Text.h"
#include "machine/SystemText.h"

namespace Norvik::Machine {

namespace {

using namespace Common;

std::string FirstOf(const Entries& entries, std::initializer_list<const char*> keys) {
  for (const char* key : keys) {
    std::string value = ValueOf(entries, key);
    if (!value.empty()) return value;
  }
  return {};
}

/// Some processors report a code in place of the manufacturer's name.
std::string ImplementerName(const std::string& code) {
  static const std::map<std::string, std::string> names = {
      {"0x41", "ARM"},    {"0x42", "Broadcom"}, {"0x43", "Cavium"}, {"0x48", "HiSilicon"},
      {"0x4e", "NVIDIA"}, {"0x51", "Qualcomm"}, {"0x61", "Apple"},  {"0xc0", "Ampere"}};
  return ValueOf(names, code);
}

std::string IdentifierOf(const Entries& entries) {
  std::string identifier;
  const auto add = [&](const char* name, const std::string& value) {
    if (value.empty()) return;
    identifier += (identifier.empty() ? "" : " ") + std::string(name) + " " + value;
  };
  add("Family", FirstOf(entries, {"cpu family", "CPU architecture"}));
  add("Model", FirstOf(entries, {"model", "CPU part"}));
  add("Stepping", FirstOf(entries, {"stepping", "CPU revision"}));
  return identifier;
}

ProcessorInfo PackageOf(const Entries& entries, std::uint64_t index) {
  ProcessorInfo info;
  info.index = index;
  info.model = FirstOf(entries, {"model name", "cpu model", "Processor"});
  info.manufacturer = FirstOf(entries, {"vendor_id"});
  if (info.manufacturer.empty()) {
    info.manufacturer = ImplementerName(ValueOf(entries, "CPU implementer"));
  }
  info.identifier = IdentifierOf(entries);
  for (const auto& feature : WordsOf(FirstOf(entries, {"flags", "Features"}))) {
    info.features.push_back(WxStringFromStdString(feature));
  }
  return info;
}

/// Adds the caches whose sizes have names that begin with `prefix`. Returns whether it found any.
bool AddCaches(const KernelValues& values, const std::string& prefix,
               std::list<CSmbCacheInfo>& caches) {
  static constexpr struct {
    const char* name;
    std::uint8_t level;
    const char* type;
  } CACHES[] = {{"l1dcachesize", 1, "Data"},
                {"l1icachesize", 1, "Instruction"},
                {"l2cachesize", 2, "Unified"},
                {"l3cachesize", 3, "Unified"}};
  const std::string kind = values.text(prefix + "name");
  const std::size_t before = caches.size();
  for (const auto& known : CACHES) {
    CSmbCacheInfo cache;
    cache.level = known.level;
    cache.type = known.type;
    cache.name = "L" + std::to_string(known.level) + " " + known.type;
    if (!kind.empty()) cache.name += " (" + kind + ")";
    cache.sizeBytes = values.number(prefix + known.name);
    cache.maximumBytes = cache.sizeBytes;
    if (cache.sizeBytes > 0) caches.push_back(cache);
  }
  return caches.size() > before;
}

}  // namespace

std::vector<ProcessorPackage> ParseCpuInfo(const std::string& text) {
  std::map<std::uint64_t, ProcessorPackage> packages;
  std::map<std::uint64_t, std::set<std::string>> cores;
  for (const auto& entries : ParseParagraphs(text, ':')) {
    const std::string number = ValueOf(entries, "processor");
    // Skip the paragraph about the board at the end, and any that has only a number.
    if (number.empty() || entries.size() < 2) continue;
    const std::uint64_t index = LeadingNumber(ValueOf(entries, "physical id"));
    const auto found = packages.find(index);
    if (found == packages.end()) {
      packages[index] = {PackageOf(entries, index), LeadingNumber(number)};
    }
    ProcessorInfo& info = packages[index].info;
    ++info.threads;
    const std::string core = ValueOf(entries, "core id");
    cores[index].insert(core.empty() ? number : core);
    info.cores = cores[index].size();
  }
  std::vector<ProcessorPackage> result;
  for (auto& package : packages) result.push_back(std::move(package.second));
  return result;
}

std::list<CSmbCacheInfo> MacCaches(const KernelValues& values) {
  std::list<CSmbCacheInfo> caches;
  int kind = 0;
  while (AddCaches(values, "hw.perflevel" + std::to_string(kind) + ".", caches)) ++kind;
  // On Apple silicon these are the caches of the slowest cores.
  if (caches.empty()) AddCaches(values, "hw.", caches);
  return caches;
}

std::list<wxString> IntelFeatures(const KernelValues& values) {
  std::list<wxString> features;
  for (const char* name :
       {"machdep.cpu.features", "machdep.cpu.leaf7_features", "machdep.cpu.extfeatures"}) {
    for (const auto& feature : WordsOf(values.text(name))) {
      features.push_back(WxStringFromStdString(feature));
    }
  }
  return features;
}

std::list<wxString> ParseArmFeatures(const std::string& text) {
  static const std::string PREFIX = "hw.optional.arm.FEAT_";
  std::list<wxString> features;
  for (const auto& [name, value] : ParseEntries(text, ':')) {
    if (!boost::starts_with(name, PREFIX) || LeadingNumber(value) == 0) continue;
    features.push_back(WxStringFromStdString(name.substr(name.rfind('.') + 1)));
  }
  return features;
}

std::uint64_t ParseCacheSize(const std::string& text) {
  static const std::map<std::string, std::uint64_t> units = {
      {"", 1}, {"K", 1024}, {"M", 1024 * 1024}, {"G", 1024 * 1024 * 1024}};
  const auto unit =
      units.find(text.substr(std::min(text.find_first_not_of("0123456789"), text.size())));
  return unit == units.end() ? 0 : LeadingNumber(text) * unit->second;
}

}  // namespace Norvik::Machine
