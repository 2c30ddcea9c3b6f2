#pragma once

#include <cstdint>
#include <deque>
#include <locale>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

/// Marks what the library exports to host and module, see `NORVIK_COMMON_API`.
#define NORVIK_JSON_API __attribute__((visibility("default")))

namespace json {

/// A JSON value to be written: null, object, array, string, number or truth value. Copies are deep;
/// a moved value is null. Deliberately there is no error and no conversion: an operation of another
/// class than the value has first discards what it holds. There is no parser. A value must not be
/// moved into a part of itself. Not synchronised; nothing throws but for lack of memory.
class NORVIK_JSON_API JSON {
 public:
  enum class Class : std::uint32_t { Null, Object, Array, String, Floating, Integral, Boolean };

  /// Numeric punctuation with the given decimal separator and without grouping.
  template <class Character, Character separator>
  class DecimalSeparator : public std::numpunct<Character> {
   protected:
    Character do_decimal_point() const override { return separator; }
  };

  JSON() = default;
  JSON(const JSON& other);
  JSON(JSON&& other) noexcept;
  ~JSON();

  // The argument may be the value itself or a part of it.

  JSON& operator=(const JSON& other);
  JSON& operator=(JSON&& other) noexcept;

  /// Bytes that should be UTF-8; `AppendEscaped` says what becomes of others.
  template <class T>
  std::enable_if_t<std::is_convertible_v<T, std::string>, JSON&> operator=(T text) {
    SetType(Class::String);
    *data_.text = std::move(text);
    return *this;
  }
  /// Widened to 64 bits. An unsigned number above the signed range becomes negative.
  template <class T>
  std::enable_if_t<std::is_integral_v<T> && !std::is_same_v<T, bool>, JSON&> operator=(T number) {
    SetType(Class::Integral);
    data_.integral = static_cast<long long>(number);
    return *this;
  }
  /// Written with at most six significant digits.
  template <class T>
  std::enable_if_t<std::is_floating_point_v<T>, JSON&> operator=(T number) {
    SetType(Class::Floating);
    data_.floating = static_cast<double>(number);
    return *this;
  }
  template <class T>
  std::enable_if_t<std::is_same_v<T, bool>, JSON&> operator=(T flag) {
    SetType(Class::Boolean);
    data_.flag = flag;
    return *this;
  }

  /// The value of a key of this object. A new key gets null. The reference is valid until the key
  /// or the object is replaced.
  JSON& operator[](const std::string& key);
  /// The element of this array at an index, from 0. The array is filled with nulls up to it.
  JSON& operator[](unsigned int index);

  /// Adds an element at the end of this array.
  template <class T>
  void append(T value) {
    SetType(Class::Array);
    data_.array->emplace_back() = std::move(value);
  }

  bool IsNull() const { return type_ == Class::Null; }

  /// Makes this an empty value of a class, unless it is of that class already.
  void SetType(Class type);

  /// The value as JSON text, indented by `tab` per level from `depth` on, with `nl` at line ends.
  /// Keys come in ascending byte order and are not escaped. The decimal separator is a point
  /// whatever the locale. Numbers that are not finite are written as the standard streams do, which
  /// is no JSON.
  std::string dump(int depth, std::string tab, std::string nl) const;
  /// The value as JSON text without white space.
  std::string strUgly() const;

 private:
  friend class Renderer;
  struct Member;
  /// In ascending order of the keys. Each member has a place of its own, so references to values
  /// stay valid; a list of pointers takes less memory than a tree, and is faster to go through.
  using Object = std::vector<std::unique_ptr<Member>>;
  using Array = std::deque<JSON>;

  union BackingData {
    Object* object;
    Array* array;
    std::string* text;
    double floating;
    long long integral = 0;
    bool flag;
  };

  /// Frees the memory but leaves pointer and tag as they are: the caller must set both.
  void ClearInternal();

  BackingData data_;
  Class type_ = Class::Null;
};

}  // namespace json
