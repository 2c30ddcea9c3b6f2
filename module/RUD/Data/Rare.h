#pragma once

#include <memory>

namespace Norvik::KOB::V2 {

/// A part that few records have: as long as it is not made it needs the space of a pointer only.
/// Copies are deep; a move leaves the source without a value.
template <class T>
class Rare {
 public:
  Rare() = default;
  Rare(const Rare& other) : value_(other.value_ ? std::make_unique<T>(*other.value_) : nullptr) {}
  Rare(Rare&&) noexcept = default;
  Rare& operator=(const Rare& other) { return *this = Rare(other); }
  Rare& operator=(Rare&&) noexcept = default;
  ~Rare() = default;

  /// The value; an empty one if it was not made.
  const T& Get() const {
    static const T none;
    return value_ ? *value_ : none;
  }
  /// The value, which is made if necessary.
  T& Make() {
    if (!value_) value_ = std::make_unique<T>();
    return *value_;
  }
  /// The value; null if it was not made.
  T* Find() { return value_.get(); }
  void Clear() { value_.reset(); }

 private:
  std::unique_ptr<T> value_;
};

}  // namespace Norvik::KOB::V2
