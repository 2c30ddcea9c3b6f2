#pragma once

#include <map>
#include <string>

#include "common/Api.h"
#include "common/action/ActionPropertyValue.h"

namespace Norvik::Common {

// Names of parameters that several actions have. Those of a task are texts; the configuration is an
// `AgentConfigurationInfo`.
inline constexpr char COMMON_PARAMETER_REQUEST_ID[] = "ParameterRequestId";
inline constexpr char COMMON_PARAMETER_LOCAL_IP[] = "ParameterLocalIp";
inline constexpr char COMMON_PARAMETER_PRODUCT_CODE[] = "ParameterProductCode";
inline constexpr char COMMON_PARAMETER_CONFIGURATION[] = "ParameterConfigurationInfo";
inline constexpr char COMMON_PARAMETER_TASK_NAME[] = "ParameterTaskName";
inline constexpr char COMMON_PARAMETER_TASK_CREATION_DATE[] = "ParameterTaskCreationDate";
inline constexpr char COMMON_PARAMETER_TASK_TIME_STAMP[] = "ParameterTaskTimeStamp";
/// The text that a user is to see.
inline constexpr char PARAMETER_NAME[] = "message";

/// Named values that travel with an action. Copied with it; not synchronised.
class NORVIK_COMMON_API ActionParameters {
 public:
  ActionParameters() = default;
  ActionParameters(const ActionParameters&) = default;
  ActionParameters(ActionParameters&&) = default;
  ActionParameters& operator=(const ActionParameters&) = default;
  ActionParameters& operator=(ActionParameters&&) = default;
  virtual ~ActionParameters();

  bool Exist(const std::string& name) const { return values_.count(name) != 0; }

  /// The value under the name. A name that is missing is entered with a default value (`false`),
  /// so that it exists from then on; ask `Exist` first. Raises `boost::bad_get` if the value is
  /// of another type.
  template <class T>
  T Get(const std::string& name) {
    return ActionSystemTypes::GetVariantPropertyValue<T>(values_[name]);
  }

  template <class T>
  void Set(const std::string& name, const T& value) {
    values_[name] = value;
  }

  const std::map<std::string, ActionPropertyValue>& Values() const { return values_; }

 private:
  std::map<std::string, ActionPropertyValue> values_;
};

}  // namespace Norvik::Common
