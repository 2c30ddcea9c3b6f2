#pragma once

#include "json/JSON.h"

namespace Norvik::Common {

/// A record that has a JSON form. Records are values in lists and optionals and are never deleted
/// through this interface, so it has no virtual destructor.
class NORVIK_JSON_API ISerializerJson {
 public:
  /// The record as a new JSON object, or null if a list is to leave the record out.
  virtual operator json::JSON() const = 0;

 protected:
  ISerializerJson() = default;
  ISerializerJson(const ISerializerJson&) = default;
  ISerializerJson(ISerializerJson&&) = default;
  ISerializerJson& operator=(const ISerializerJson&) = default;
  ISerializerJson& operator=(ISerializerJson&&) = default;
  ~ISerializerJson() = default;
};

}  // namespace Norvik::Common
