#pragma once

namespace Norvik::Common {

/// A collector of one kind of fact. `T` is a record, or a list or vector of records.
template <class T>
class ISection {
 public:
  /// Fills the result. Lists are appended to. A fact that cannot be found is left out.
  virtual void GetInfo(T& result) = 0;
  virtual ~ISection() = default;

 protected:
  ISection() = default;
  ISection(const ISection&) = default;
  ISection& operator=(const ISection&) = default;
};

}  // namespace Norvik::Common
