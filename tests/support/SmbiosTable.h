#pragma once

#include "support/Test.h"

namespace Norvik::Tests {

using SmbiosBytes = std::vector<std::uint8_t>;

/// The fields of a structure, from a list of bytes or from bytes by offset: `{"length": 27, "4": 1,
/// "8": [0, 1]}`.
inline SmbiosBytes FieldsOf(const Json& fields) {
  if (fields.is_array()) return fields;
  SmbiosBytes bytes(fields["length"].get<std::size_t>() - 4);
  for (const auto& [key, value] : fields.items()) {
    if (key == "length") continue;
    std::size_t at = std::stoul(key) - 4;
    for (const Json& byte : value.is_array() ? value : Json{value}) bytes.at(at++) = byte;
  }
  return bytes;
}

/// A raw table as firmware stores it, from structures in the form `[type, handle, fields,
/// text...]`.
inline SmbiosBytes SmbiosTableOf(const Json& structures) {
  SmbiosBytes table;
  const auto add = [&](const auto& bytes) {
    table.insert(table.end(), bytes.begin(), bytes.end());
  };
  for (const Json& structure : structures) {
    const SmbiosBytes fields = FieldsOf(structure[2]);
    const int handle = structure[1];
    const std::vector<int> header = {structure[0], static_cast<int>(4 + fields.size()),
                                     handle & 0xFF, handle >> 8};
    for (const int byte : header) table.push_back(static_cast<std::uint8_t>(byte));
    add(fields);
    for (std::size_t text = 3; text < structure.size(); ++text) {
      add(structure[text].get<std::string>());
      table.push_back(0);
    }
    table.insert(table.end(), structure.size() == 3 ? 2 : 1, 0);
  }
  return table;
}

}  // namespace Norvik::Tests
