#pragma once

#include <algorithm>
#include <boost/optional.hpp>
#include <cmath>
#include <string>
#include <tuple>
#include <type_traits>

#include "json/Numbers.h"
#include "json/SerializerHelpers.h"

/// Field tables: a record lists its fields once, and its reader, its writer and its comparison walk
/// that list.
///
///   struct Disk {
///     std::string name;
///     std::time_t date = 0;
///     static constexpr auto Fields() {
///       return FieldTable(Field("name", &Disk::name), Date("date", &Disk::date));
///     }
///   };
///
/// A field is a key, a member and a format. A format has
///   Read(node, key, value)  sets a value from the child of a tree node
///   Write(target, value)    sets a JSON value that is null before
///   Equal(left, right)      compares two values
/// A child that is absent or does not convert gives the default value and is no error, except in
/// `RequiredRecords`. The tree is a `boost::property_tree::ptree`; it is a template parameter so
/// that only the sources that read one need its definition.
namespace json {

/// How the bytes of a tree become a text of a wide type. Byte strings are taken as they are.
enum class Conversion {
  Utf8,
  Locale,  ///< the multi-byte conversion of the process's locale
};

/// Conversion between a text type and UTF-8 bytes. Each text type specializes it.
template <class Text>
struct TextCodec {
  static constexpr bool isText = false;
};
template <>
struct TextCodec<std::string> {
  static constexpr bool isText = true;
  static std::string Decode(const std::string& bytes, Conversion) { return bytes; }
  static std::string Encode(const std::string& text) { return text; }
};

/// The child of a node under a key; null if it is absent.
template <class Tree>
const Tree* ChildOf(const Tree& node, const char* key) {
  const auto found = node.find(key);
  return found == node.not_found() ? nullptr : &found->second;
}

template <class Value, class Tree>
Value ReadValue(const Tree& node, const char* key, const Value& absent, Conversion conversion) {
  if constexpr (TextCodec<Value>::isText) {
    const Tree* child = ChildOf(node, key);
    return child ? TextCodec<Value>::Decode(child->data(), conversion) : absent;
  } else {
    return node.get(key, absent);
  }
}

template <class Value>
void WriteValue(JSON& target, const Value& value) {
  if constexpr (TextCodec<Value>::isText) {
    target = TextCodec<Value>::Encode(value);
  } else {
    target = value;
  }
}

template <class Value>
JSON ValueToJson(const Value& value) {
  JSON written;
  WriteValue(written, value);
  return written;
}

/// Replaces the elements by `read(child)` for each child of the node; clears them if it is null.
template <class Tree, class Container, class Read>
void ReadElements(const Tree* list, Container& elements, Read read) {
  elements.clear();
  if (!list) return;
  for (const auto& child : *list) elements.insert(elements.end(), read(child.second));
}

template <class Tree, class T>
void ReadFields(const Tree& node, T& record) {
  std::apply([&](const auto&... field) { (field.Read(node, record), ...); }, T::Fields());
}

template <class T>
JSON FieldsToJson(const T& record) {
  JSON object;
  object.SetType(JSON::Class::Object);
  std::apply([&](const auto&... field) { (field.Write(object, record), ...); }, T::Fields());
  return object;
}

template <class T>
bool FieldsEqual(const T& left, const T& right) {
  return std::apply([&](const auto&... field) { return (field.Equal(left, right) && ...); },
                    T::Fields());
}

// A record inside a record either is an `ISerializerJson` with operations of its own or has just a
// table.

template <class T, class Tree>
T ReadRecord(const Tree& node) {
  if constexpr (std::is_base_of_v<Norvik::Common::ISerializerJson, T>) {
    return T(node);
  } else {
    T record;
    ReadFields(node, record);
    return record;
  }
}

template <class T>
JSON RecordToJson(const T& record) {
  if constexpr (std::is_base_of_v<Norvik::Common::ISerializerJson, T>) {
    return record;
  } else {
    return FieldsToJson(record);
  }
}

template <class T>
bool RecordsEqual(const T& left, const T& right) {
  if constexpr (std::is_base_of_v<Norvik::Common::ISerializerJson, T>) {
    return left == right;
  } else {
    return FieldsEqual(left, right);
  }
}

/// Comparison by `==`.
struct ComparedByValue {
  template <class Value>
  bool Equal(const Value& left, const Value& right) const {
    return left == right;
  }
};

/// Number, flag or text; 0, false or empty by default.
struct PlainFormat : ComparedByValue {
  Conversion conversion;

  template <class Tree, class Value>
  void Read(const Tree& node, const char* key, Value& value) const {
    value = ReadValue(node, key, Value(), conversion);
  }
  template <class Value>
  void Write(JSON& target, const Value& value) const {
    WriteValue(target, value);
  }
};

/// Number or flag with a default of its own.
template <class Value>
struct DefaultedFormat : ComparedByValue {
  Value absent;

  template <class Tree>
  void Read(const Tree& node, const char* key, Value& value) const {
    value = ReadValue(node, key, absent, Conversion::Utf8);
  }
  void Write(JSON& target, const Value& value) const { WriteValue(target, value); }
};

/// Number that may be missing: null in JSON then.
struct OptionalFormat : ComparedByValue {
  template <class Tree, class Value>
  void Read(const Tree& node, const char* key, boost::optional<Value>& value) const {
    value = node.template get_optional<Value>(key);
  }
  template <class Value>
  void Write(JSON& target, const boost::optional<Value>& value) const {
    if (value) target = *value;
  }
};

/// Time: seconds since the epoch in memory, milliseconds in JSON, cut to seconds when read.
struct DateFormat : ComparedByValue {
  template <class Tree, class Seconds>
  void Read(const Tree& node, const char* key, Seconds& value) const {
    value = static_cast<Seconds>(node.get(key, 0L) / 1000);
  }
  template <class Seconds>
  void Write(JSON& target, const Seconds& value) const {
    target = static_cast<long long>(value) * 1000;
  }
};

/// Number that counts as unchanged while it moves by less than a tolerance. NaN equals nothing.
struct ToleranceFormat {
  double tolerance;

  template <class Tree>
  void Read(const Tree& node, const char* key, double& value) const {
    const Tree* const child = ChildOf(node, key);
    value = child ? FloatingOf(child->data()) : 0.0;
  }
  void Write(JSON& target, double value) const { target = value; }
  bool Equal(double left, double right) const { return std::abs(left - right) < tolerance; }
};

/// Record inside a record; all its defaults if it is absent.
struct RecordFormat {
  template <class Tree, class Inner>
  void Read(const Tree& node, const char* key, Inner& value) const {
    const Tree* child = ChildOf(node, key);
    value = child ? ReadRecord<Inner>(*child) : Inner();
  }
  template <class Inner>
  void Write(JSON& target, const Inner& value) const {
    target = RecordToJson(value);
  }
  template <class Inner>
  bool Equal(const Inner& left, const Inner& right) const {
    return RecordsEqual(left, right);
  }
};

/// List or vector of records: null in JSON if empty, compared in order. Reading throws
/// `ptree_bad_path` if a required one is absent; null is an empty one.
template <bool required>
struct RecordsFormat {
  template <class Tree, class Container>
  void Read(const Tree& node, const char* key, Container& value) const {
    const Tree* child = required ? &node.get_child(key) : ChildOf(node, key);
    ReadElements(child, value, ReadRecord<typename Container::value_type, Tree>);
  }
  template <class Container>
  void Write(JSON& target, const Container& value) const {
    target = ArrayOf(value, RecordToJson<typename Container::value_type>);
  }
  template <class Container>
  bool Equal(const Container& left, const Container& right) const {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      RecordsEqual<typename Container::value_type>);
  }
};

/// List, vector or set of texts: an array of strings, null if empty.
struct TextsFormat : ComparedByValue {
  Conversion conversion;

  template <class Tree, class Container>
  void Read(const Tree& node, const char* key, Container& value) const {
    ReadElements(ChildOf(node, key), value, [this](const Tree& element) {
      return TextCodec<typename Container::value_type>::Decode(element.data(), conversion);
    });
  }
  template <class Container>
  void Write(JSON& target, const Container& value) const {
    target = ArrayOf(value, ValueToJson<typename Container::value_type>);
  }
};

/// List of texts that JSON holds as objects with a name: `[{"name":"staff"}]`, null if empty.
struct NamesFormat : ComparedByValue {
  Conversion conversion;

  template <class Tree, class Container>
  void Read(const Tree& node, const char* key, Container& value) const {
    ReadElements(ChildOf(node, key), value, [this](const Tree& element) {
      return ReadValue(element, "name", typename Container::value_type(), conversion);
    });
  }
  template <class Container>
  void Write(JSON& target, const Container& value) const {
    target = ArrayOf(value, [](const auto& name) {
      JSON object;
      WriteValue(object["name"], name);
      return object;
    });
  }
};

/// A line of a table.
template <class Owner, class FieldValue, class FieldFormat>
struct FieldEntry {
  using Value = FieldValue;
  const char* key;
  Value Owner::*member;
  FieldFormat format;

  template <class Tree>
  void Read(const Tree& node, Owner& record) const {
    format.Read(node, key, record.*member);
  }
  /// Sets the key of a JSON object.
  void Write(JSON& object, const Owner& record) const { format.Write(object[key], record.*member); }
  bool Equal(const Owner& left, const Owner& right) const {
    return format.Equal(left.*member, right.*member);
  }
};

template <class... Entries>
constexpr std::tuple<Entries...> FieldTable(Entries... entries) {
  return {entries...};
}

// The lines that a table is made of.

template <class Owner, class Value, class Format>
constexpr FieldEntry<Owner, Value, Format> Entry(const char* key, Value Owner::*member,
                                                 Format format) {
  return {key, member, format};
}
template <class Owner, class Value>
constexpr auto Field(const char* key, Value Owner::*member,
                     Conversion conversion = Conversion::Utf8) {
  return Entry(key, member, PlainFormat{{}, conversion});
}
template <class Owner, class Value>
constexpr auto Field(const char* key, boost::optional<Value> Owner::*member) {
  return Entry(key, member, OptionalFormat());
}
template <class Owner, class Value>
constexpr auto FieldOrElse(const char* key, Value Owner::*member, Value absent) {
  return Entry(key, member, DefaultedFormat<Value>{{}, absent});
}
template <class Owner>
constexpr auto Approximate(const char* key, double Owner::*member, double tolerance) {
  return Entry(key, member, ToleranceFormat{tolerance});
}
template <class Owner, class Seconds>
constexpr auto Date(const char* key, Seconds Owner::*member) {
  return Entry(key, member, DateFormat());
}
template <class Owner, class Inner>
constexpr auto Record(const char* key, Inner Owner::*member) {
  return Entry(key, member, RecordFormat());
}
template <class Owner, class Container>
constexpr auto Records(const char* key, Container Owner::*member) {
  return Entry(key, member, RecordsFormat<false>());
}
template <class Owner, class Container>
constexpr auto RequiredRecords(const char* key, Container Owner::*member) {
  return Entry(key, member, RecordsFormat<true>());
}
template <class Owner, class Container>
constexpr auto Texts(const char* key, Container Owner::*member,
                     Conversion conversion = Conversion::Utf8) {
  return Entry(key, member, TextsFormat{{}, conversion});
}
template <class Owner, class Container>
constexpr auto Names(const char* key, Container Owner::*member,
                     Conversion conversion = Conversion::Utf8) {
  return Entry(key, member, NamesFormat{{}, conversion});
}

}  // namespace json
