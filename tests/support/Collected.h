#pragma once

#include <list>
#include <string>
#include <vector>

#include "common/text/Text.h"

namespace Norvik::Tests {

inline std::string TextOf(const wxString& value) { return Common::ToUtf8(value); }
inline std::string TextOf(const std::string& value) { return value; }
inline std::string TextOf(int value) { return std::to_string(value); }

/// One text for each record: the values of members, with "|" between them.
template <class Record, class... Members>
std::vector<std::string> TextsOf(const std::list<Record>& records, Members... members) {
  std::vector<std::string> texts;
  for (const Record& record : records) {
    std::string text;
    ((text += "|" + TextOf(record.*members)), ...);
    texts.push_back(text.substr(1));
  }
  return texts;
}

/// The records that a section gives.
template <class Record, class Section>
std::list<Record> Collected(Section section) {
  std::list<Record> records;
  section.GetInfo(records);
  return records;
}

}  // namespace Norvik::Tests
