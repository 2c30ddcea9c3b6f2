#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <list>
#include <string>
#include <vector>

#include "common/Api.h"

namespace Norvik::Common {

/// The machine's SMBIOS table.
class NORVIK_COMMON_API SmBios {
 public:
  /// One structure of the table.
  class NORVIK_COMMON_API CStruct {
   public:
    CStruct(std::vector<std::uint8_t> formatted, std::vector<std::string> strings)
        : formatted_(std::move(formatted)), strings_(std::move(strings)) {}

    /// The raw formatted area: byte 0 type, byte 1 length, bytes 2 and 3 handle, then the type's
    /// own fields. Lives as long as the structure.
    const std::uint8_t* Header() const { return formatted_.data(); }
    std::size_t Length() const { return formatted_.size(); }
    /// Text number `index`, counted from 1; empty for 0 and for a text that is not there.
    std::string GetString(unsigned long index) const;

    /// Little-endian field at an offset; 0 if the structure is too short to have it.
    std::uint64_t Field(std::size_t offset, std::size_t bytes) const;
    /// Text whose number stands at an offset; empty if the structure is too short.
    std::string TextAt(std::size_t offset) const { return GetString(Field(offset, 1)); }

   private:
    std::vector<std::uint8_t> formatted_;
    std::vector<std::string> strings_;
  };

  /// No table: `IsValid` is false.
  SmBios() = default;
  /// Reads a raw table behind its entry point. Damaged bytes end the reading where they stand.
  SmBios(std::uint32_t version, const std::vector<std::uint8_t>& table);
  SmBios(const SmBios&) = delete;
  SmBios& operator=(const SmBios&) = delete;

  /// Version as major times 256 plus minor: 3.1 reads 769. 0 without a table.
  virtual std::uint32_t GetVersion();
  virtual ~SmBios();

  /// Whether a table was read.
  bool IsValid() const { return !structures_.empty(); }
  /// Appends every structure of the type, in table order. They stay owned by this object.
  void GetStructData(std::uint8_t type, std::list<const CStruct*>& structures) const;

 private:
  std::uint32_t version_ = 0;
  std::deque<CStruct> structures_;
};

}  // namespace Norvik::Common
