#pragma once

#include <cstdint>
#include <deque>
#include <locale>
#include <map>
#include <string>
#include <type_traits>
#include <utility>

/// Marks what crosses the border between host and module: one type information for both sides.
#define NORVIK_JSON_API __attribute__((visibility("default")))

namespace json {

/// A JSON value: null, object, array, text, number or flag. Copies are deep, moves leave null.
/// Whoever uses a value as something else than it is loses what it held: there is no error and no
/// conversion. There is no parser. A value must not be moved into a part of itself.
class NORVIK_JSON_API JSON {
 public:
  enum class Class : std::uint32_t { Null, Object, Array, String, Floating, Integral, Boolean };

  /// Numeric punctuation with a decimal separator of its own and no grouping.
  template <class Character, Character separator>
  class DecimalSeparator : public std::numpunct<Character> {
   protected:
    Character do_decimal_point() const override { return separator; }
  };

  JSON() = default;
  JSON(const JSON& other);
  JSON(JSON&& other) noexcept;
  ~JSON();

  /// Safe for the value itself and for a part of it.
  JSON& operator=(const JSON& other);
  JSON& operator=(JSON&& other) noexcept;

  template <class T>
  std::enable_if_t<std::is_convertible_v<T, std::string>, JSON&> operator=(T text) {
    SetType(Class::String);
    *data_.text = std::move(text);
    return *this;
  }
  /// Widened to 64 bits with its sign; an unsigned value above the signed range turns negative.
  template <class T>
  std::enable_if_t<std::is_integral_v<T> && !std::is_same_v<T, bool>, JSON&> operator=(T number) {
    SetType(Class::Integral);
    data_.integral = static_cast<long long>(number);
    return *this;
  }
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

  /// The value under a key of this object, null if it is new.
  JSON& operator[](const std::string& key);
  /// The element of this array, which grows with nulls to hold it.
  JSON& operator[](unsigned int index);

  /// Adds at the end of this array.
  template <class T>
  void append(T value) {
    SetType(Class::Array);
    data_.array->emplace_back() = std::move(value);
  }

  bool IsNull() const { return type_ == Class::Null; }

  /// Turns the value into an empty one of the class, unless it is of that class already.
  void SetType(Class type);

  /// Text of the value: `tab` indents a level, `nl` ends a line. Keys come in ascending byte order
  /// and are not escaped; doubles have at most six significant digits and always a decimal point.
  std::string dump(int depth, std::string tab, std::string nl) const;
  /// The text without white space.
  std::string strUgly() const;

 private:
  friend class Renderer;
  using Object = std::map<std::string, JSON>;
  using Array = std::deque<JSON>;

  union BackingData {
    Object* object;
    Array* array;
    std::string* text;
    double floating;
    long long integral = 0;
    bool flag;
  };

  /// Frees what is on the heap and leaves pointer and tag behind: the caller sets both at once.
  void ClearInternal();

  BackingData data_;
  Class type_ = Class::Null;
};

}  // namespace json
