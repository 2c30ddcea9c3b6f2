#include "documents/MachineSections.h"

#include <algorithm>
#include <tuple>
#include <type_traits>

namespace Norvik::Documents {

namespace {

template <class Left, class Right>
constexpr bool IsSame(Left left, Right right) {
  if constexpr (std::is_same_v<Left, Right>) {
    return left == right;
  } else {
    return false;
  }
}

template <class Record>
std::vector<std::string> IdentityOf() {
  std::vector<std::string> keys;
  const auto addIfKey = [&](const auto& field) {
    const bool isKey =
        std::apply([&](const auto... member) { return (IsSame(field.member, member) || ...); },
                   Record::KeyMembers());
    if (isKey) keys.emplace_back(field.key);
  };
  std::apply([&](const auto&... field) { (addIfKey(field), ...); }, Record::Fields());
  return keys;
}

std::vector<MachineSection> AllSections() {
  std::vector<MachineSection> sections;
  KOB::ForEachSection([&](const auto& section) {
    using Section = std::decay_t<decltype(section)>;
    MachineSection& added = sections.emplace_back();
    added.key = section.key;
    added.kind = Section::kind;
    if constexpr (Section::isList) {
      added.identity = IdentityOf<typename Section::Value::value_type>();
    }
  });
  return sections;
}

}  // namespace

const std::vector<MachineSection>& MachineSections() {
  static const std::vector<MachineSection> sections = AllSections();
  return sections;
}

const MachineSection* FindMachineSection(const std::string& key) {
  const auto& sections = MachineSections();
  const auto found =
      std::find_if(sections.begin(), sections.end(),
                   [&](const MachineSection& section) { return section.key == key; });
  return found == sections.end() ? nullptr : &*found;
}

}  // namespace Norvik::Documents
