#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <variant>
#include <vector>

#include "platform/compat/PropertyListReader.h"

namespace Norvik::Platform {

struct CfNumber {
  bool isReal = false;
  std::int64_t whole = 0;
  double real = 0.0;
};
struct CfDate {
  double seconds = 0.0;  ///< since 2001-01-01 in UTC
};
struct CfArray {
  std::vector<CFTypeRef> values;
};
struct CfDictionary {
  std::map<std::string, CFTypeRef, std::less<>> values;
};
struct CfUrl {
  std::string path;
};
using CfData = std::vector<UInt8>;

/// The content of an object; collections own a reference to each of their values. The `CFTypeID` of
/// a type is its position here plus one.
using CfValue =
    std::variant<std::string, CfNumber, bool, CfData, CfDate, CfArray, CfDictionary, CfUrl>;

/// A new object; the caller owns one reference.
CFTypeRef MakeCfObject(CfValue value);
/// A new object with the content of a node of a property list.
CFTypeRef CfFromPropertyList(plist_t node);

/// The content of an object. Ends the program, with a message that names the object and the call,
/// if the object does not exist or was released.
const CfValue& CfValueOf(CFTypeRef object, const char* call);
/// Ends the program: a call got an object of a type that it does not accept.
[[noreturn]] void FailCfType(const CfValue& value, const char* call);
template <class Value>
const Value& CfValueAs(CFTypeRef object, const char* call) {
  const CfValue& value = CfValueOf(object, call);
  if (const auto* wanted = std::get_if<Value>(&value)) return *wanted;
  FailCfType(value, call);
}

void RetainCfObject(CFTypeRef object);
void ReleaseCfObject(CFTypeRef object);
std::size_t CountCfObjects();

/// Writes the text to the error channel and aborts.
[[noreturn]] void StopProgram(const std::string& text);

}  // namespace Norvik::Platform
