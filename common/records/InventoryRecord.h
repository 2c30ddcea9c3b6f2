#pragma once

#include <boost/property_tree/ptree_fwd.hpp>
#include <tuple>
#include <utility>

#include "common/Api.h"
#include "common/records/WxStringCodec.h"
#include "json/FieldTable.h"
#include "json/ISerializerJson.h"

namespace Norvik {

// What the tables of records are written with, for the records of every namespace below this one.
using json::Approximate;
using json::Conversion;
using json::Date;
using json::Field;
using json::FieldOrElse;
using json::FieldTable;
using json::Names;
using json::Record;
using json::Records;
using json::RequiredRecords;
using json::Texts;
using json::WideText;

namespace Common {

/// Base of a record `T` that is written, and read back, but never compared. `T` has
///   explicit T(const ptree& node) { Read(node); }
///   static constexpr auto Fields()  the table of its fields (json/FieldTable.h)
///
/// A record is a plain value: members may be set directly, and copies are independent. The member
/// functions are defined in InventoryRecordDefinition.h and instantiated once, in Records.cpp of
/// the record's folder, so that other sources need not compile the table.
template <class T>
class NORVIK_COMMON_API WrittenRecord : public ISerializerJson {
 public:
  using ptree = boost::property_tree::ptree;

  /// An object with every key of the table, never null.
  operator json::JSON() const override;

 protected:
  /// Sets every field of the table from a node. An absent key gives the field's default.
  void Read(const ptree& node);
};

/// Base of a record that is compared between two inventories. A record that a list section holds
/// also has
///   static constexpr auto Key()   the member, or the tuple of members, that identify it
///   static constexpr auto Kept()  the table of what an incremental document says of a deleted one:
///                                 at least the fields of the key
template <class T>
class NORVIK_COMMON_API InventoryRecord : public WrittenRecord<T> {
 public:
  using ptree = boost::property_tree::ptree;

  /// Compares every field of the table.
  bool operator==(const T& other) const;
  bool operator!=(const T& other) const { return !(*this == other); }

  // Templates, so that a record without `Key()` can be instantiated.

  /// Whether records of two inventories describe the same thing.
  template <class Other = T>
  bool HasSameKey(const Other& other) const {
    const T& self = static_cast<const T&>(*this);
    return std::apply(
        [&](const auto... member) { return ((self.*member == other.*member) && ...); },
        KeyMembers<Other>());
  }
  /// The members of `Key()` as a tuple.
  template <class Other = T>
  static constexpr auto KeyMembers() {
    return AsTuple(Other::Key());
  }

 private:
  template <class... Members>
  static constexpr auto AsTuple(std::tuple<Members...> members) {
    return members;
  }
  template <class Member>
  static constexpr auto AsTuple(Member T::*member) {
    return std::make_tuple(member);
  }
};

}  // namespace Common
}  // namespace Norvik
