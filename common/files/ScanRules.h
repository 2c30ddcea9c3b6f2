#pragma once

#include <set>
#include <string>
#include <vector>

#include "common/Api.h"
#include "common/configuration/KobConfigurationInfo.h"

namespace Norvik::Common {

/// Which files a scan of the disk lists. Comparisons are exact, case and all.
class NORVIK_COMMON_API ScanRules {
 public:
  using Texts = std::set<std::string>;

  /// What decides about a file that is no link.
  enum class Verdict { Listed, ExcludedName, NoExtension, UnwantedExtension };

  explicit ScanRules(const KobConfigurationInfo& configuration);

  /// @param path as the walk spells it: the full path without a slash at its end
  bool IsExcludedFolder(const std::string& path) const { return excludedFolders_.count(path) > 0; }
  Verdict Judge(const std::string& name) const;

  // The rules themselves, for those who keep the sets.

  /// The folders that a scan starts from.
  static Texts Roots();
  /// What counts of the configured additional extensions.
  static Texts AdditionalExtensions(const std::vector<std::string>& configured);
  /// What the names' extensions are compared with: each as it is and with a dot, in all upper and
  /// in all lower case.
  static Texts CompleteExtensions(const Texts& extensions);
  /// A name's extension with its dot. A name whose only dot comes first has none.
  static std::string ExtensionOf(const std::string& name);

 private:
  Texts excludedFolders_;
  Texts excludedNames_;
  Texts extensions_;
};

}  // namespace Norvik::Common
