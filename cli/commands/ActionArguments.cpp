#include "cli/commands/ActionArguments.h"

#include <charconv>
#include <map>
#include <system_error>

#include "common/action/ActionCodes.h"
#include "common/text/Text.h"
#include "host/HostError.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

using namespace Common;

template <class Number>
bool ParseNumber(const std::string& text, Number& number) {
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  return result.ec == std::errc() && result.ptr == end;
}

void SetText(ActionParameters& parameters, const std::string& key, const std::string& value) {
  const wxString text = WxStringFromStdString(value);
  if (text.empty() && !value.empty()) throw UsageError("parameter " + key + " wants UTF-8 text");
  parameters.Set(key, text);
}

void SetFlag(ActionParameters& parameters, const std::string& key, const std::string& value) {
  if (value != "true" && value != "false") {
    throw UsageError("parameter " + key + ":bool wants true or false");
  }
  parameters.Set(key, value == "true");
}

void SetNumber(ActionParameters& parameters, const std::string& key, const std::string& value) {
  unsigned long long number = 0;
  if (!ParseNumber(value, number)) {
    throw UsageError("parameter " + key + ":u64 wants a whole number from 0 to 2^64-1");
  }
  parameters.Set(key, number);
}

using Setter = void (*)(ActionParameters&, const std::string&, const std::string&);

/// How to read a value, by the suffix of its key.
const std::map<std::string, Setter>& Setters() {
  static const std::map<std::string, Setter> setters = {
      {"", SetText}, {":bool", SetFlag}, {":u64", SetNumber}};
  return setters;
}

void AddParameter(const std::string& argument, ActionParameters& parameters) {
  const auto equals = argument.find('=');
  std::string key = argument.substr(0, equals);
  const auto colon = key.find(':');
  const std::string type = colon == std::string::npos ? "" : key.substr(colon);
  key.resize(key.size() - type.size());
  const auto setter = Setters().find(type);
  if (equals == std::string::npos || key.empty() || setter == Setters().end()) {
    throw UsageError("parameter " + argument +
                     " wants the form key=value, key:bool=true, key:bool=false or key:u64=NUMBER");
  }
  if (parameters.Exist(key)) throw UsageError("parameter " + key + " is given twice");
  setter->second(parameters, key, argument.substr(equals + 1));
}

}  // namespace

unsigned int ParseActionCode(const std::string& text) {
  unsigned int code = 0;
  if (ParseNumber(text, code)) return code;
  const std::string name = ToUpper(text);
  for (const ActionName& action : ACTION_NAMES) {
    if (name == action.name) return action.code;
  }
  throw UsageError("ACTION wants a code or a name that `norvik-agent actions` lists, not " + text);
}

ActionParameters ParseActionParameters(const std::vector<std::string>& arguments) {
  ActionParameters parameters;
  for (const auto& argument : arguments) AddParameter(argument, parameters);
  return parameters;
}

}  // namespace Norvik::Cli
