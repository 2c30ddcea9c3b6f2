#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <list>
#include <string>
#include <vector>

#include "common/Api.h"

namespace Norvik::Common {

/// The machine's SMBIOS table. It does not change, so that several threads may read it.
class NORVIK_COMMON_API SmBios {
 public:
  /// One structure of the table.
  class NORVIK_COMMON_API CStruct {
   public:
    CStruct(std::vector<std::uint8_t> formatted, std::vector<std::string> strings)
        : formatted_(std::move(formatted)), strings_(std::move(strings)) {}

    /// The raw formatted area: type in byte 0, length in byte 1, handle in bytes 2 and 3, then the
    /// fields of the type. Valid as long as the structure.
    const std::uint8_t* Header() const { return formatted_.data(); }
    /// Bytes of the formatted area, at least 4.
    std::size_t Length() const { return formatted_.size(); }
    /// The text of a number, from 1, as raw bytes; empty for 0 and for a number without a text.
    std::string GetString(unsigned long index) const;

    /// The little-endian number of up to 8 bytes at an offset; 0 if the structure is too short.
    std::uint64_t Field(std::size_t offset, std::size_t bytes) const;
    /// The text whose number is at an offset; empty if the structure is too short.
    std::string TextAt(std::size_t offset) const { return GetString(Field(offset, 1)); }

   private:
    std::vector<std::uint8_t> formatted_;
    std::vector<std::string> strings_;
  };

  /// A machine without a table: `IsValid` is false.
  SmBios() = default;
  /// Parses a raw table, without its entry point. Stops at the first damaged structure and keeps
  /// those before it.
  SmBios(std::uint32_t version, const std::vector<std::uint8_t>& table);
  SmBios(const SmBios&) = delete;
  SmBios& operator=(const SmBios&) = delete;

  /// The version as major * 256 + minor: 769 is 3.1. 0 without a table.
  virtual std::uint32_t GetVersion();
  virtual ~SmBios();

  /// Whether the table has any structure.
  bool IsValid() const { return !structures_.empty(); }
  /// Appends all structures of a type, in the order of the table. This object owns them.
  void GetStructData(std::uint8_t type, std::list<const CStruct*>& structures) const;

 private:
  std::uint32_t version_ = 0;
  std::deque<CStruct> structures_;
};

}  // namespace Norvik::Common
