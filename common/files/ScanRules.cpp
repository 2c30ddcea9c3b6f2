#include "common/files/ScanRules.h"

#include <algorithm>
#include <cctype>

#include "common/text/Text.h"

namespace Norvik::Common {

namespace {

std::string Mapped(std::string text, int (*convert)(int)) {
  std::transform(text.begin(), text.end(), text.begin(), [&](char character) {
    return static_cast<char>(convert(static_cast<unsigned char>(character)));
  });
  return text;
}

template <class Container>
ScanRules::Texts Encoded(const Container& texts) {
  ScanRules::Texts encoded;
  for (const auto& text : texts) encoded.insert(EncodeUtf8Characters(text));
  return encoded;
}

ScanRules::Texts WantedExtensions(const KobConfigurationInfo& configuration) {
  ScanRules::Texts extensions = ScanRules::AdditionalExtensions(configuration.additionalExtensions);
  extensions.insert(configuration.includedExtensions.begin(),
                    configuration.includedExtensions.end());
  return ScanRules::CompleteExtensions(extensions);
}

}  // namespace

ScanRules::ScanRules(const KobConfigurationInfo& configuration)
    : excludedFolders_(Encoded(configuration.excludedPaths)),
      excludedNames_(Encoded(configuration.excludedFiles)),
      extensions_(Encoded(WantedExtensions(configuration))) {}

ScanRules::Verdict ScanRules::Judge(const std::string& name) const {
  if (excludedNames_.count(name) > 0) return Verdict::ExcludedName;
  const std::string extension = ExtensionOf(name);
  if (extensions_.count(extension) > 0) return Verdict::Listed;
  return extension.empty() ? Verdict::NoExtension : Verdict::UnwantedExtension;
}

ScanRules::Texts ScanRules::Roots() {
  // Every volume is mounted below the one root.
  return {"/"};
}

ScanRules::Texts ScanRules::AdditionalExtensions(const std::vector<std::string>& configured) {
  Texts extensions(configured.begin(), configured.end());
  extensions.erase("EXE");
  extensions.erase("CPL");
  return extensions;
}

ScanRules::Texts ScanRules::CompleteExtensions(const Texts& extensions) {
  Texts complete;
  const auto addBothCases = [&](const std::string& extension) {
    complete.insert(Mapped(extension, std::toupper));
    complete.insert(Mapped(extension, std::tolower));
  };
  for (const auto& extension : extensions) {
    if (!extension.empty() && extension.front() != '.') addBothCases("." + extension);
    addBothCases(extension);
  }
  return complete;
}

std::string ScanRules::ExtensionOf(const std::string& name) {
  const std::size_t dot = name.rfind('.');
  return dot == std::string::npos || dot == 0 ? std::string() : name.substr(dot);
}

}  // namespace Norvik::Common
