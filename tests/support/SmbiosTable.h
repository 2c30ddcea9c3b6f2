#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Norvik::Tests {

/// Adds a structure to an SMBIOS table as firmware lays it out: the fields behind the header, then
/// the texts.
inline void AddStructure(std::vector<std::uint8_t>& table, std::uint8_t type, std::uint16_t handle,
                         const std::vector<std::uint8_t>& fields,
                         const std::vector<std::string>& texts) {
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

}  // namespace Norvik::Tests
