#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "common/Api.h"
#include "common/configuration/KobConfigurationInfo.h"
#include "platform/DirectoryReader.h"

namespace Norvik::Common {

/// What a set of a scan's configuration holds.
enum ConfigScan : int {
  ExcludePath = 0,       ///< full folder paths to leave out, spelled as the walk spells them
  IncludePath = 1,       ///< root folders to walk
  ExcludeFile = 2,       ///< file names, with extension, to leave out
  IncludeExtension = 3,  ///< extensions to keep, with their dot
};

using ScanConfiguration = std::map<ConfigScan, std::set<std::string>>;

/// Decides what a scan of the disk does with a folder and with each entry in it. The scan itself
/// and `explain` both go by it. Comparisons are exact, including case.
class NORVIK_COMMON_API ScanRules {
 public:
  using Texts = std::set<std::string>;

  /// What becomes of an entry, by the first rule that applies.
  enum class Verdict {
    Link,    ///< neither followed nor listed
    Folder,  ///< walked, unless `IsExcludedFolder`
    ExcludedName,
    NoExtension,
    UnwantedExtension,
    Listed,
  };
  /// A wanted extension with its dot, and its place in the configured set, counted from 0.
  using Extension = std::pair<const std::string, std::uint32_t>;
  struct Judgement {
    Verdict verdict;
    const Extension* extension = nullptr;  ///< of a listed file; belongs to the rules
  };

  ScanRules() = default;
  /// Text that is no UTF-8 is taken as Latin-1 (see `EncodeUtf8Characters`).
  explicit ScanRules(const ScanConfiguration& configuration);
  /// The rules of a file inventory under the agent's configuration.
  explicit ScanRules(const KobConfigurationInfo& configuration);

  /// The sets as they are compared, in UTF-8.
  const ScanConfiguration& Configuration() const { return configuration_; }

  // These throw `std::out_of_range` if the configuration lacks the set that they need.

  /// @param path full path of a folder, as the walk spells it: without a slash at its end
  bool IsExcludedFolder(const std::string& path) const { return Holds(ExcludePath, path); }
  bool IsExcludedName(const std::string& name) const { return Holds(ExcludeFile, name); }
  bool IsWantedExtension(const std::string& text) const { return Holds(IncludeExtension, text); }
  /// @param kind of the entry itself, never `Unknown`
  Judgement Judge(Platform::EntryKind kind, const std::string& name) const;

  /// The folders that a scan starts from.
  static Texts Roots();
  /// Those of the configured additional extensions that are used.
  static Texts AdditionalExtensions(const std::vector<std::string>& configured);
  /// The texts with which extensions of names are compared: each configured one as it is and with a
  /// dot, in all upper and in all lower case.
  static Texts CompleteExtensions(const Texts& extensions);
  /// The extension of a name, with its dot. A name whose only dot comes first has none.
  static std::string ExtensionOf(const std::string& name);
  /// The path of a folder with one slash at its end, to which the walk appends its entries' names.
  static std::string PrefixOf(const std::string& folder);

 private:
  bool Holds(ConfigScan set, const std::string& text) const {
    return configuration_.at(set).count(text) > 0;
  }

  ScanConfiguration configuration_;
  std::unordered_map<std::string, std::uint32_t> extensions_;  ///< the wanted ones
};

}  // namespace Norvik::Common
