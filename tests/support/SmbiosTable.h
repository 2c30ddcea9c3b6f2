#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "support/Cases.h"

namespace Norvik::Tests {

using SmbiosBytes = std::vector<std::uint8_t>;

/// Adds a structure to an SMBIOS table as firmware lays it out: the fields behind the header, then
/// the texts.
inline void AddStructure(SmbiosBytes& table, std::uint8_t type, std::uint16_t handle,
                         const SmbiosBytes& fields, const std::vector<std::string>& texts) {
  table.insert(table.end(),
               {type, static_cast<std::uint8_t>(4 + fields.size()),
                static_cast<std::uint8_t>(handle & 0xFF), static_cast<std::uint8_t>(handle >> 8)});
  table.insert(table.end(), fields.begin(), fields.end());
  for (const auto& text : texts) {
    table.insert(table.end(), text.begin(), text.end());
    table.push_back(0);
  }
  table.insert(table.end(), texts.empty() ? 2 : 1, 0);
}

/// Fields from a list of bytes, or from bytes by their offset: `{"length": 27, "4": 1, "8": [0,
/// 1]}`.
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

/// A table from structures in the form `[type, handle, fields, text...]`.
inline SmbiosBytes SmbiosTableOf(const Json& structures) {
  SmbiosBytes table;
  for (const Json& structure : structures) {
    const std::vector<std::string> texts(structure.begin() + 3, structure.end());
    AddStructure(table, structure[0], structure[1], FieldsOf(structure[2]), texts);
  }
  return table;
}

}  // namespace Norvik::Tests
