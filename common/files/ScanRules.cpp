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
ScanRules::Texts SetOf(const Container& texts) {
  return {texts.begin(), texts.end()};
}

ScanRules::Texts WantedExtensions(const KobConfigurationInfo& configuration) {
  ScanRules::Texts extensions = ScanRules::AdditionalExtensions(configuration.additionalExtensions);
  extensions.insert(configuration.includedExtensions.begin(),
                    configuration.includedExtensions.end());
  return ScanRules::CompleteExtensions(extensions);
}

}  // namespace

ScanRules::ScanRules(const ScanConfiguration& configuration) {
  for (const auto& [key, values] : configuration) {
    auto& encoded = configuration_[key];
    for (const auto& value : values) encoded.insert(EncodeUtf8Characters(value));
  }
  const auto wanted = configuration_.find(IncludeExtension);
  if (wanted == configuration_.end()) return;
  std::uint32_t place = 0;
  for (const auto& extension : wanted->second) extensions_.emplace(extension, place++);
}

ScanRules::ScanRules(const KobConfigurationInfo& configuration)
    : ScanRules(ScanConfiguration{{ExcludePath, SetOf(configuration.excludedPaths)},
                                  {IncludePath, Roots()},
                                  {ExcludeFile, SetOf(configuration.excludedFiles)},
                                  {IncludeExtension, WantedExtensions(configuration)}}) {}

ScanRules::Judgement ScanRules::Judge(Platform::EntryKind kind, const std::string& name) const {
  if (kind == Platform::EntryKind::Link) return {Verdict::Link};
  if (kind == Platform::EntryKind::Folder) return {Verdict::Folder};
  if (IsExcludedName(name)) return {Verdict::ExcludedName};
  const std::string extension = ExtensionOf(name);
  const auto wanted = extensions_.find(extension);
  if (wanted != extensions_.end()) return {Verdict::Listed, &*wanted};
  return {extension.empty() ? Verdict::NoExtension : Verdict::UnwantedExtension};
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

std::string ScanRules::PrefixOf(const std::string& folder) {
  return folder.empty() || folder.back() == '/' ? folder : folder + '/';
}

}  // namespace Norvik::Common
