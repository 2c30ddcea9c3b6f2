#pragma once

#include <map>
#include <string>

#include "common/Api.h"
#include "common/action/ActionPropertyValue.h"

namespace Norvik::Common {

// Names of parameters that several actions have. Those of a task hold a `std::string`, the
// configuration is an `AgentConfigurationInfo`, the message a `wxString`.
inline constexpr char COMMON_PARAMETER_REQUEST_ID[] = "ParameterRequestId";
inline constexpr char COMMON_PARAMETER_LOCAL_IP[] = "ParameterLocalIp";
inline constexpr char COMMON_PARAMETER_PRODUCT_CODE[] = "ParameterProductCode";
inline constexpr char COMMON_PARAMETER_CONFIGURATION[] = "ParameterConfigurationInfo";
inline constexpr char COMMON_PARAMETER_TASK_NAME[] = "ParameterTaskName";
inline constexpr char COMMON_PARAMETER_TASK_CREATION_DATE[] = "ParameterTaskCreationDate";
inline constexpr char COMMON_PARAMETER_TASK_TIME_STAMP[] = "ParameterTaskTimeStamp";
/// The text to show to a user.
inline constexpr char PARAMETER_NAME[] = "message";

/// The named values of an action. A value type: each action has its own copy. Not synchronised,
/// since one handler at a time uses a copy.
class NORVIK_COMMON_API ActionParameters {
 public:
  ActionParameters() = default;
  ActionParameters(const ActionParameters&) = default;
  ActionParameters(ActionParameters&&) = default;
  ActionParameters& operator=(const ActionParameters&) = default;
  ActionParameters& operator=(ActionParameters&&) = default;
  virtual ~ActionParameters();

  /// Whether a value of this name is set, of whatever type.
  bool Exist(const std::string& name) const { return values_.count(name) != 0; }

  /// The value of a name. Throws `boost::bad_get` if it is of another type than `T`; nothing is
  /// converted. A missing name is added with the value `false`, so check `Exist` first.
  template <class T>
  T Get(const std::string& name) {
    return ActionSystemTypes::GetVariantPropertyValue<T>(values_[name]);
  }

  /// Sets or replaces a value. `T` must be one of the types of `ActionPropertyValue`; pass texts as
  /// `std::string` or `wxString`, since a literal would become a `bool`.
  template <class T>
  void Set(const std::string& name, const T& value) {
    values_[name] = value;
  }

  /// All values by name; the reference is valid as long as this object.
  const std::map<std::string, ActionPropertyValue>& Values() const { return values_; }

 private:
  std::map<std::string, ActionPropertyValue> values_;
};

}  // namespace Norvik::Common
