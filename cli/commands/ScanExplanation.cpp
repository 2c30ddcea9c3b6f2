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

ScanExplanation NotListed(const char* rule, const std::string& reason) {
  return {false, rule, reason};
}

/// Opens a folder as the scan does. Returns the reason if the scan skips it, else nothing.
boost::optional<ScanExplanation> Enter(Platform::DirectoryReader& reader, const ScanRules& rules,
                                       const std::string& folder) {
  if (rules.IsExcludedFolder(folder)) {
    return NotListed("excluded-folder", "the folder " + folder + " is in excludedPaths");
  }
  try {
    reader.Open(folder);
    return boost::none;
  } catch (const boost::filesystem::filesystem_error& error) {
    return NotListed("unreadable",
                     "the folder " + folder + " cannot be opened: " + error.code().message());
  }
}

/// Kind of an entry of the open folder. Empty if there is no such entry.
boost::optional<EntryKind> FindKind(Platform::DirectoryReader& reader, const std::string& name) {
  Platform::DirectoryEntry entry;
  std::error_code error;
  while (reader.Next(entry, error)) {
    if (name != entry.name) continue;
    if (entry.kind != EntryKind::Unknown) return entry.kind;
    const EntryKind kind = reader.ReadMetadata(entry, error).kind;
    if (error) return boost::none;
    return kind;
  }
  return boost::none;
}

/// @param name the last part of the path
ScanExplanation Explain(ScanRules::Verdict verdict, const std::string& path,
                        const std::string& name) {
  const std::string extension = ScanRules::ExtensionOf(name);
  switch (verdict) {
    case ScanRules::Verdict::Link:
      return NotListed("link", path + " is a link, which is neither followed nor listed");
    case ScanRules::Verdict::Folder:
      return NotListed("folder", "it is a folder, which is walked; only files are listed");
    case ScanRules::Verdict::ExcludedName:
      return NotListed("excluded-name", "the name " + name + " is in excludedFiles");
    case ScanRules::Verdict::NoExtension:
      return NotListed("no-extension", "the name " + name + " has no extension");
    case ScanRules::Verdict::Listed:
      return {true, "listed", "the extension " + extension + " is wanted"};
    case ScanRules::Verdict::UnwantedExtension:
      break;
  }
  return NotListed("unwanted-extension",
                   "the extension " + extension +
                       ", spelled like this, is not among the wanted ones, which are all upper or "
                       "all lower case");
}

/// The names on the path below the root. Empty if the path is outside the root.
boost::optional<std::vector<std::string>> StepsFrom(const std::string& root,
                                                    const std::string& path) {
  if (path == root) return std::vector<std::string>();
  const std::string prefix = ScanRules::PrefixOf(root);
  if (!boost::starts_with(path, prefix)) return boost::none;
  std::vector<std::string> steps;
  boost::split(steps, path.substr(prefix.size()), boost::is_any_of("/"));
  return steps;
}

ScanExplanation ExplainFrom(const ScanRules& rules, const std::string& root,
                            const std::vector<std::string>& steps) {
  Platform::DirectoryReader reader;
  std::string folder = root;
  if (const auto skipped = Enter(reader, rules, folder)) return *skipped;
  for (std::size_t i = 0; i < steps.size(); ++i) {
    const std::string path = ScanRules::PrefixOf(folder) + steps[i];
    const auto kind = FindKind(reader, steps[i]);
    if (!kind) return NotListed("absent", "the folder " + folder + " has no entry " + steps[i]);
    const auto verdict = rules.Judge(*kind, steps[i]).verdict;
    if (verdict != ScanRules::Verdict::Folder) {
      const bool isLast = i + 1 == steps.size();
      if (isLast || verdict == ScanRules::Verdict::Link) return Explain(verdict, path, steps[i]);
      return NotListed("absent", path + " is no folder");
    }
    if (const auto skipped = Enter(reader, rules, path)) return *skipped;
    folder = path;
  }
  return Explain(ScanRules::Verdict::Folder, folder, "");
}

}  // namespace

ScanExplanation ExplainScan(const ScanRules& rules, const std::string& path) {
  for (const auto& root : ScanRules::Roots()) {
    if (const auto steps = StepsFrom(root, path)) return ExplainFrom(rules, root, *steps);
  }
  return NotListed("outside", "it lies outside the folders that are scanned");
}

}  // namespace Norvik::Cli
