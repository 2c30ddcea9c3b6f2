#include "cli/commands/ScanExplanation.h"

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/split.hpp>
#include <boost/filesystem/exception.hpp>
#include <boost/optional.hpp>
#include <vector>

#include "platform/DirectoryReader.h"

namespace Norvik::Cli {

namespace {

using Common::ScanRules;
using Platform::EntryKind;

ScanExplanation Not(const char* rule, const std::string& reason) { return {false, rule, reason}; }

/// What keeps the scan out of a folder; otherwise the reader has it open.
boost::optional<ScanExplanation> Enter(Platform::DirectoryReader& reader, const ScanRules& rules,
                                       const std::string& folder) {
  if (rules.IsExcludedFolder(folder)) {
    return Not("excluded-folder", "the folder " + folder + " is in excludedPaths");
  }
  try {
    reader.Open(folder);
    return boost::none;
  } catch (const boost::filesystem::filesystem_error& error) {
    return Not("unreadable",
               "the folder " + folder + " cannot be opened: " + error.code().message());
  }
}

/// Empty if the open folder has no such entry.
boost::optional<EntryKind> Find(Platform::DirectoryReader& reader, const std::string& name) {
  Platform::DirectoryEntry entry;
  std::error_code error;
  while (reader.Next(entry, error)) {
    if (name != entry.name) continue;
    if (entry.kind != EntryKind::Unknown) return entry.kind;
    const EntryKind kind = reader.Ask(entry.name, error).kind;
    if (error) return boost::none;
    return kind;
  }
  return boost::none;
}

ScanExplanation ExplainFile(const ScanRules& rules, const std::string& name) {
  const std::string extension = ScanRules::ExtensionOf(name);
  switch (rules.Judge(name)) {
    case ScanRules::Verdict::Listed:
      return {true, "listed", "the extension " + extension + " is wanted"};
    case ScanRules::Verdict::ExcludedName:
      return Not("excluded-name", "the name " + name + " is in excludedFiles");
    case ScanRules::Verdict::NoExtension:
      return Not("no-extension", "the name " + name + " has no extension");
    case ScanRules::Verdict::UnwantedExtension:
      break;
  }
  return Not("unwanted-extension", "the extension " + extension +
                                       ", spelled like this, is not among the wanted ones, which "
                                       "are all upper or all lower case");
}

/// The names that lead from the root to the path; empty optional if it is not below the root.
boost::optional<std::vector<std::string>> StepsFrom(const std::string& root,
                                                    const std::string& path) {
  if (path == root) return std::vector<std::string>();
  const std::string prefix = boost::ends_with(root, "/") ? root : root + "/";
  if (!boost::starts_with(path, prefix)) return boost::none;
  std::vector<std::string> steps;
  boost::split(steps, path.substr(prefix.size()), boost::is_any_of("/"));
  return steps;
}

ScanExplanation ExplainFrom(const ScanRules& rules, const std::string& root,
                            const std::vector<std::string>& steps) {
  Platform::DirectoryReader reader;
  std::string folder = root;
  if (const auto kept = Enter(reader, rules, folder)) return *kept;
  for (std::size_t i = 0; i < steps.size(); ++i) {
    const auto kind = Find(reader, steps[i]);
    const std::string path = (boost::ends_with(folder, "/") ? folder : folder + "/") + steps[i];
    if (!kind) return Not("absent", "the folder " + folder + " has no entry " + steps[i]);
    if (*kind == EntryKind::Link) {
      return Not("link", path + " is a link, which is neither followed nor listed");
    }
    if (*kind != EntryKind::Folder) {
      if (i + 1 == steps.size()) return ExplainFile(rules, steps[i]);
      return Not("absent", path + " is no folder");
    }
    if (const auto kept = Enter(reader, rules, path)) return *kept;
    folder = path;
  }
  return Not("folder", "it is a folder, which is walked; only files are listed");
}

}  // namespace

ScanExplanation ExplainScan(const ScanRules& rules, const std::string& path) {
  for (const auto& root : ScanRules::Roots()) {
    if (const auto steps = StepsFrom(root, path)) return ExplainFrom(rules, root, *steps);
  }
  return Not("outside", "it lies outside the folders that are scanned");
}

}  // namespace Norvik::Cli
