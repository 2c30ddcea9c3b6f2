#pragma once

#include <algorithm>
#include <boost/optional.hpp>
#include <cmath>
#include <string>
#include <tuple>
#include <type_traits>

#include "json/SerializerHelpers.h"

/// Records declare their fields once, as a table of field kinds, and reader, writer and comparison
/// walk that table. What departs from the plain field is a kind of its own.
///
/// A kind has the key and the member, and
///   Read(node, record)     fills the member from a tree node; what is absent or does not convert
///                          gives the default
///   Write(object, record)  sets the key of a JSON object
///   Equal(left, right)     compares the member of two records
namespace json {

/// How bytes that were read become a text of a wide type; byte strings stay as they are.
enum class Conversion {
  Utf8,
  Locale,  ///< the multi-byte conversion of the process's locale
};

/// What a text type gives and takes as UTF-8 bytes. Wide types specialize it.
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

template <class T, class = void>
struct HasFields : std::false_type {};
template <class T>
struct HasFields<T, std::void_t<decltype(T::Fields())>> : std::true_type {};

/// Child of a node by its key; null if it is absent.
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

/// Puts what `read` gives for each child of a node in the place of the elements; null has none.
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

// A record inside a record either has these operations of its own or just a table.

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

/// Number, flag or text.
template <class R, class Value>
struct PlainField {
  const char* key;
  Value R::*member;
  Conversion conversion;

  template <class Tree>
  void Read(const Tree& node, R& record) const {
    record.*member = ReadValue(node, key, Value(), conversion);
  }
  void Write(JSON& object, const R& record) const { WriteValue(object[key], record.*member); }
  bool Equal(const R& left, const R& right) const { return left.*member == right.*member; }
};

/// Number or flag whose absence in a tree means something else than zero.
template <class R, class Value>
struct DefaultedField : PlainField<R, Value> {
  constexpr DefaultedField(const char* name, Value R::*field, Value missing)
      : PlainField<R, Value>{name, field, Conversion::Utf8}, absent(missing) {}
  Value absent;

  template <class Tree>
  void Read(const Tree& node, R& record) const {
    record.*this->member = ReadValue(node, this->key, absent, this->conversion);
  }
};

/// Number that may be missing; null in JSON then.
template <class R, class Value>
struct OptionalField {
  const char* key;
  boost::optional<Value> R::*member;

  template <class Tree>
  void Read(const Tree& node, R& record) const {
    record.*member = node.template get_optional<Value>(key);
  }
  void Write(JSON& object, const R& record) const {
    JSON& target = object[key];
    if (record.*member) target = *(record.*member);
  }
  bool Equal(const R& left, const R& right) const { return left.*member == right.*member; }
};

/// Time: seconds since the epoch in memory, milliseconds in JSON.
template <class R, class Seconds>
struct DateField {
  const char* key;
  Seconds R::*member;

  template <class Tree>
  void Read(const Tree& node, R& record) const {
    record.*member = static_cast<Seconds>(node.get(key, 0L) / 1000);
  }
  void Write(JSON& object, const R& record) const {
    object[key] = static_cast<long long>(record.*member) * 1000;
  }
  bool Equal(const R& left, const R& right) const { return left.*member == right.*member; }
};

/// Number that counts as unchanged while it moves by less than a tolerance. NaN equals nothing.
template <class R>
struct ToleranceField {
  const char* key;
  double R::*member;
  double tolerance;

  template <class Tree>
  void Read(const Tree& node, R& record) const {
    record.*member = ReadValue(node, key, 0.0, Conversion::Utf8);
  }
  void Write(JSON& object, const R& record) const { object[key] = record.*member; }
  bool Equal(const R& left, const R& right) const {
    return std::abs(left.*member - right.*member) < tolerance;
  }
};

/// Record inside a record; defaults if it is absent.
template <class R, class Inner>
struct RecordField {
  const char* key;
  Inner R::*member;

  template <class Tree>
  void Read(const Tree& node, R& record) const {
    const Tree* child = ChildOf(node, key);
    record.*member = child ? ReadRecord<Inner>(*child) : Inner();
  }
  void Write(JSON& object, const R& record) const { object[key] = RecordToJson(record.*member); }
  bool Equal(const R& left, const R& right) const {
    return RecordsEqual(left.*member, right.*member);
  }
};

/// List or vector of records, null in JSON if empty. A required one must be in the tree: reading
/// raises `ptree_bad_path` without it.
template <class R, class Container, bool required>
struct RecordsField {
  using Inner = typename Container::value_type;
  const char* key;
  Container R::*member;

  template <class Tree>
  void Read(const Tree& node, R& record) const {
    const Tree* child = required ? &node.get_child(key) : ChildOf(node, key);
    ReadElements(child, record.*member, ReadRecord<Inner, Tree>);
  }
  void Write(JSON& object, const R& record) const {
    object[key] = ArrayOf(record.*member, RecordToJson<Inner>);
  }
  bool Equal(const R& left, const R& right) const {
    return std::equal((left.*member).begin(), (left.*member).end(), (right.*member).begin(),
                      (right.*member).end(), RecordsEqual<Inner>);
  }
};

/// List, vector or set of texts: an array of strings, null if empty.
template <class R, class Container>
struct TextsField {
  using Text = typename Container::value_type;
  const char* key;
  Container R::*member;
  Conversion conversion;

  template <class Tree>
  void Read(const Tree& node, R& record) const {
    ReadElements(ChildOf(node, key), record.*member, [this](const Tree& element) {
      return TextCodec<Text>::Decode(element.data(), conversion);
    });
  }
  void Write(JSON& object, const R& record) const {
    object[key] = ArrayOf(record.*member, ValueToJson<Text>);
  }
  bool Equal(const R& left, const R& right) const { return left.*member == right.*member; }
};

/// List of texts that JSON holds as objects with a name: `[{"name":"staff"}]`, null if empty.
template <class R, class Container>
struct NamesField {
  using Text = typename Container::value_type;
  const char* key;
  Container R::*member;
  Conversion conversion;

  template <class Tree>
  void Read(const Tree& node, R& record) const {
    ReadElements(ChildOf(node, key), record.*member, [this](const Tree& element) {
      return ReadValue(element, "name", Text(), conversion);
    });
  }
  void Write(JSON& object, const R& record) const {
    object[key] = ArrayOf(record.*member, [](const Text& name) {
      JSON value;
      WriteValue(value["name"], name);
      return value;
    });
  }
  bool Equal(const R& left, const R& right) const { return left.*member == right.*member; }
};

template <class... Fields>
constexpr std::tuple<Fields...> FieldTable(Fields... fields) {
  return {fields...};
}

template <class R, class Value>
constexpr PlainField<R, Value> Field(const char* key, Value R::*member,
                                     Conversion conversion = Conversion::Utf8) {
  return {key, member, conversion};
}
template <class R, class Value>
constexpr OptionalField<R, Value> Field(const char* key, boost::optional<Value> R::*member) {
  return {key, member};
}
template <class R, class Value>
constexpr DefaultedField<R, Value> FieldOrElse(const char* key, Value R::*member, Value absent) {
  return {key, member, absent};
}
template <class R>
constexpr ToleranceField<R> Approximate(const char* key, double R::*member, double tolerance) {
  return {key, member, tolerance};
}
template <class R, class Seconds>
constexpr DateField<R, Seconds> Date(const char* key, Seconds R::*member) {
  return {key, member};
}
template <class R, class Inner>
constexpr RecordField<R, Inner> Record(const char* key, Inner R::*member) {
  return {key, member};
}
template <class R, class Container>
constexpr RecordsField<R, Container, false> Records(const char* key, Container R::*member) {
  return {key, member};
}
template <class R, class Container>
constexpr RecordsField<R, Container, true> RequiredRecords(const char* key, Container R::*member) {
  return {key, member};
}
template <class R, class Container>
constexpr TextsField<R, Container> Texts(const char* key, Container R::*member,
                                         Conversion conversion = Conversion::Utf8) {
  return {key, member, conversion};
}
template <class R, class Container>
constexpr NamesField<R, Container> Names(const char* key, Container R::*member,
                                         Conversion conversion = Conversion::Utf8) {
  return {key, member, conversion};
}

}  // namespace json
