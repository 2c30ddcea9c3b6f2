#pragma once

#include <cctype>

#include "support/Test.h"

namespace Norvik::Tests {

/// A case of a data file, which is an object with the list "cases".
struct Case {
  std::string file;  ///< the name of the file without ".json"
  Json entry;        ///< the keys of the case and, as defaults, those of its file

  const std::string& Name() const { return entry["name"].get_ref<const std::string&>(); }
  friend void PrintTo(const Case& shown, std::ostream* stream) { *stream << shown.Name(); }
};

/// The cases of all files in a folder below tests/, sorted by file.
inline std::vector<Case> CasesIn(const std::string& folder) {
  std::vector<Case> cases;
  for (const auto& name : FilesBelow(NORVIK_SOURCE_DIR "/tests/" + folder)) {
    const boost::filesystem::path path(name);
    if (path.extension() != ".json") continue;
    Json file = DataOf(folder + "/" + name);
    for (const Json& row : std::exchange(file["cases"], nullptr)) {
      Json entry = file;
      entry.update(row);
      cases.push_back({path.stem().string(), entry});
    }
  }
  return cases;
}

/// Replaces each "see: name" in a value by the value of the case, or of its file, under that name.
inline Json Resolved(Json value, const Json& entry) {
  if (value.is_string() && value.get_ref<const std::string&>().rfind("see: ", 0) == 0) {
    return Resolved(entry.at(value.get<std::string>().substr(5)), entry);
  }
  if (value.is_structured()) {
    for (Json& inner : value) inner = Resolved(inner, entry);
  }
  return value;
}

/// Names a test after its case: "no tool" of "cdrom" as "Cdrom_NoTool".
struct CaseName {
  static std::string Joined(const std::string& words) {
    std::string name;
    bool begins = true;
    for (const char letter : words) {
      const bool isPart = std::isalnum(static_cast<unsigned char>(letter)) != 0;
      if (isPart) name += static_cast<char>(begins ? std::toupper(letter) : letter);
      begins = !isPart;
    }
    return name;
  }
  template <class Row>
  std::string operator()(const Row& row) const {
    return Joined(row.param.file) + "_" + Joined(row.param.Name());
  }
};

}  // namespace Norvik::Tests
