#pragma once

#include <memory>

namespace Norvik::KOB::V2 {

/// A part of a record that hardly any record has: takes the room of a pointer while it is not made.
/// Copies are deep, moves leave none.
template <class T>
class Rare {
 public:
  Rare() = default;
  Rare(const Rare& other) : value_(other.value_ ? std::make_unique<T>(*other.value_) : nullptr) {}
  Rare(Rare&&) noexcept = default;
  Rare& operator=(const Rare& other) { return *this = Rare(other); }
  Rare& operator=(Rare&&) noexcept = default;
  ~Rare() = default;

  /// The value, an empty one if there is none.
  const T& Get() const {
    static const T none;
    return value_ ? *value_ : none;
  }
  /// The value, made if there is none.
  T& Make() {
    if (!value_) value_ = std::make_unique<T>();
    return *value_;
  }
  /// Null if there is none.
  T* Find() { return value_.get(); }
  void Clear() { value_.reset(); }

 private:
  std::unique_ptr<T> value_;
};

}  // namespace Norvik::KOB::V2
