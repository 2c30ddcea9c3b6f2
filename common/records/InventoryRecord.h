#pragma once

#include <boost/property_tree/ptree_fwd.hpp>
#include <tuple>
#include <utility>

#include "common/Api.h"
#include "common/records/WxStringCodec.h"
#include "json/FieldTable.h"
#include "json/ISerializerJson.h"

namespace Norvik {

// The words of a record's table, for records of every namespace below this one.
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

namespace Common {

/// Base of a record `T` that is read and written but never compared. `T` states its fields in
/// `static constexpr auto Fields()`, and has `explicit T(const ptree& node) { Read(node); }`.
///
/// The members are defined in InventoryRecordDefinition.h, which only the source of a record
/// includes: it instantiates them once, so that includers need not compile the table.
template <class T>
class NORVIK_COMMON_API WrittenRecord : public ISerializerJson {
 public:
  using ptree = boost::property_tree::ptree;

  /// An object with every key of the table, never null.
  operator json::JSON() const override;

 protected:
  /// Fills every field of the table from a node; an absent key gives the field's default.
  void Read(const ptree& node);
};

/// Base of a record that a comparison of two inventories looks at. A record of a list states in
/// `static constexpr auto Key()` the member, or the tuple of members, that identify it.
template <class T>
class NORVIK_COMMON_API InventoryRecord : public WrittenRecord<T> {
 public:
  using ptree = boost::property_tree::ptree;

  /// Every field of the table.
  bool operator==(const T& other) const;
  bool operator!=(const T& other) const { return !(*this == other); }

  /// Whether two records of two inventories are the same thing.
  template <class Other = T>
  bool HasSameKey(const Other& other) const {
    const T& self = static_cast<const T&>(*this);
    return std::apply(
        [&](const auto... member) { return ((self.*member == other.*member) && ...); },
        KeyMembers(Other::Key()));
  }

 private:
  template <class... Members>
  static constexpr auto KeyMembers(std::tuple<Members...> members) {
    return members;
  }
  template <class Member>
  static constexpr auto KeyMembers(Member T::*member) {
    return std::make_tuple(member);
  }
};

}  // namespace Common
}  // namespace Norvik
