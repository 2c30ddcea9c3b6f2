#pragma once

namespace Norvik::Common {

/// A collector of one kind of fact. `T` is a record, or a list or vector of records. It holds no
/// state between calls.
template <class T>
class ISection {
 public:
  /// Fills the record, or appends to the list. A fact that cannot be found is left out; it is no
  /// error.
  virtual void GetInfo(T& result) = 0;
  virtual ~ISection() = default;

 protected:
  ISection() = default;
  ISection(const ISection&) = default;
  ISection& operator=(const ISection&) = default;
};

}  // namespace Norvik::Common
