#include "common/identification/SmBios.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Norvik::Common {

namespace {

constexpr std::size_t HEADER_LENGTH = 4;
constexpr std::uint8_t END_OF_TABLE = 127;

using Table = std::vector<std::uint8_t>;
using Position = Table::const_iterator;

std::size_t Rest(Position position, const Table& table) {
  return static_cast<std::size_t>(std::distance(position, table.end()));
}

/// Reads the texts after a formatted area: each ends with a NUL, and another NUL ends the list (an
/// empty list consists of two). False if the table ends before that.
bool ReadStrings(const Table& table, Position& position, std::vector<std::string>& strings) {
  while (true) {
    const Position end = std::find(position, table.end(), 0);
    if (end == table.end()) return false;
    const bool last = end == position;
    if (!last) strings.emplace_back(position, end);
    position = std::next(end);
    if (last) break;
  }
  if (!strings.empty()) return true;
  if (position == table.end() || *position != 0) return false;
  ++position;
  return true;
}

}  // namespace

std::string SmBios::CStruct::GetString(unsigned long index) const {
  return index == 0 || index > strings_.size() ? std::string() : strings_[index - 1];
}

std::uint64_t SmBios::CStruct::Field(std::size_t offset, std::size_t bytes) const {
  if (offset > formatted_.size() || formatted_.size() - offset < bytes) return 0;
  std::uint64_t value = 0;
  for (std::size_t i = std::min<std::size_t>(bytes, sizeof(value)); i > 0; --i) {
    value = (value << 8) | formatted_[offset + i - 1];
  }
  return value;
}

SmBios::SmBios(std::uint32_t version, const std::vector<std::uint8_t>& table) : version_(version) {
  Position position = table.begin();
  while (Rest(position, table) >= HEADER_LENGTH) {
    const std::uint8_t type = *position;
    const std::size_t length = *std::next(position);
    if (type == END_OF_TABLE || length < HEADER_LENGTH || length > Rest(position, table)) return;
    const Position formattedEnd = std::next(position, static_cast<std::ptrdiff_t>(length));
    std::vector<std::uint8_t> formatted(position, formattedEnd);
    std::vector<std::string> strings;
    position = formattedEnd;
    if (!ReadStrings(table, position, strings)) return;
    structures_.emplace_back(std::move(formatted), std::move(strings));
  }
}

SmBios::~SmBios() = default;

std::uint32_t SmBios::GetVersion() { return IsValid() ? version_ : 0; }

void SmBios::GetStructData(std::uint8_t type, std::list<const CStruct*>& structures) const {
  for (const CStruct& structure : structures_) {
    if (structure.Header()[0] == type) structures.push_back(&structure);
  }
}

}  // namespace Norvik::Common
