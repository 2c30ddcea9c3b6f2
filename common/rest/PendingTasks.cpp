#include "common/rest/PendingTasks.h"

#include <boost/property_tree/ptree.hpp>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <exception>
#include <limits>
#include <locale>
#include <map>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include "common/text/Text.h"

namespace Norvik::Common {

namespace {

using Tree = boost::property_tree::ptree;

constexpr std::int64_t LONGEST_PERIOD = 315'360'000;  ///< ten years
constexpr std::int64_t LATEST_TIME = 4'000'000'000;
constexpr std::size_t LONGEST_IDENTIFIER = 200;

class TaskError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The text of a plain value; empty if the key is missing. Throws for an object or a list.
std::string TextAt(const Tree& node, const char* key) {
  const auto child = node.get_child_optional(key);
  if (!child) return {};
  if (!child->empty()) throw TaskError(std::string(key) + " is no plain value");
  return child->data();
}

/// The number that the text holds. Throws if it holds anything else, or the number is out of range.
template <class Number>
Number ParseNumber(const std::string& text, const char* key,
                   Number lowest = std::numeric_limits<Number>::lowest(),
                   Number highest = std::numeric_limits<Number>::max()) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  if (result.ec != std::errc() || result.ptr != end || number < lowest || number > highest) {
    throw TaskError(std::string(key) + " is no whole number in its range");
  }
  return number;
}

ActionPropertyValue ReadFlag(const std::string& text) {
  if (text != "true" && text != "false") throw TaskError("value is neither true nor false");
  return text == "true";
}

template <class Number>
ActionPropertyValue ReadWholeNumber(const std::string& text) {
  return ParseNumber<Number>(text, "value");
}

/// With the classic locale. Not `from_chars`, which cannot read fractions on every system.
template <class Number>
ActionPropertyValue ReadFraction(const std::string& text) {
  std::istringstream stream(text);
  stream.imbue(std::locale::classic());
  Number number{};
  stream >> std::noskipws >> number;
  if (!stream || stream.peek() != std::istringstream::traits_type::eof()) {
    throw TaskError("value is no number");
  }
  return number;
}

ActionPropertyValue ReadWideText(const std::string& text) { return WxStringFromStdString(text); }
ActionPropertyValue ReadPlainText(const std::string& text) { return text; }

ActionPropertyValue ReadTime(const std::string& text) {
  const auto seconds = ParseNumber<std::int64_t>(text, "value", 0, LATEST_TIME);
  return ActionTimePoint(std::chrono::seconds(seconds));
}

using ValueReader = ActionPropertyValue (*)(const std::string&);

const std::map<std::string, ValueReader>& ValueReaders() {
  static const std::map<std::string, ValueReader> readers = {
      {"bool", ReadFlag},
      {"uint32", ReadWholeNumber<unsigned int>},
      {"uint64", ReadWholeNumber<unsigned long long>},
      {"int32", ReadWholeNumber<int>},
      {"int64", ReadWholeNumber<long long>},
      {"float", ReadFraction<float>},
      {"double", ReadFraction<double>},
      {"text", ReadWideText},
      {"string", ReadPlainText},
      {"time", ReadTime}};
  return readers;
}

void ReadParameter(const Tree& node, ActionParameters& parameters) {
  const std::string name = TextAt(node, "name");
  if (name.empty()) throw TaskError("a parameter has no name");
  if (parameters.Exist(name)) throw TaskError("the parameter " + name + " comes twice");
  const std::string type = TextAt(node, "type");
  const auto reader = ValueReaders().find(type.empty() ? "text" : type);
  if (reader == ValueReaders().end()) {
    throw TaskError("the parameter " + name + " is of the unknown type " + type);
  }
  if (!node.get_child_optional("value")) throw TaskError("the parameter " + name + " has no value");
  try {
    parameters.Set(name, reader->second(TextAt(node, "value")));
  } catch (const TaskError& error) {
    throw TaskError("the parameter " + name + ": " + error.what());
  }
}

/// Read first: statuses of the task need it, above all if the rest of the task is wrong.
void ReadOrigin(const Tree& node, ActionParameters& parameters) {
  static constexpr const char* NAMES[][2] = {
      {"requestId", COMMON_PARAMETER_REQUEST_ID},
      {"name", COMMON_PARAMETER_TASK_NAME},
      {"creationDate", COMMON_PARAMETER_TASK_CREATION_DATE},
      {"timeStamp", COMMON_PARAMETER_TASK_TIME_STAMP},
  };
  for (const auto& [key, parameter] : NAMES) {
    if (node.get_child_optional(key)) parameters.Set(parameter, TextAt(node, key));
  }
}

/// A missing member is 0: the task runs once, at once.
ScheduleInfo ReadSchedule(const Tree& node) {
  ScheduleInfo schedule;
  const std::string period = TextAt(node, "periodSeconds");
  const std::string next = TextAt(node, "next");
  if (!period.empty()) {
    schedule.periodSeconds = ParseNumber<std::int64_t>(period, "periodSeconds", 0, LONGEST_PERIOD);
  }
  if (!next.empty()) schedule.next = ParseNumber<std::int64_t>(next, "next", 0, LATEST_TIME);
  return schedule;
}

/// The member of a task under a key; none if it is missing or null. Throws for a plain value.
const Tree* PartAt(const Tree& node, const char* key, const char* kind) {
  const auto part = node.get_child_optional(key);
  if (!part || (part->empty() && part->data() == "null")) return nullptr;
  if (!part->data().empty()) throw TaskError(std::string(key) + " is no " + kind);
  return &*part;
}

void ReadTask(const Tree& node, Schedule& task) {
  ReadOrigin(node, task.parameters);
  task.identifier = TextAt(node, "identifier").substr(0, LONGEST_IDENTIFIER + 1);
  if (task.identifier.empty()) throw TaskError("it has no identifier");
  if (task.identifier.size() > LONGEST_IDENTIFIER) throw TaskError("its identifier is too long");
  task.code = ParseNumber<unsigned int>(TextAt(node, "code"), "code");
  if (const Tree* const list = PartAt(node, "parameters", "list")) {
    for (const auto& [key, parameter] : *list) {
      if (!key.empty()) throw TaskError("parameters is no list");
      ReadParameter(parameter, task.parameters);
    }
  }
  if (const Tree* const when = PartAt(node, "schedule", "object")) {
    // Not at once: what is wrong here may have been meant for later.
    if (when->count("") != 0) throw TaskError("schedule is no object");
    task.when = ReadSchedule(*when);
  }
}

}  // namespace

PendingTasksRequest::operator json::JSON() const {
  json::JSON body;
  body["agentIdentifier"] = agentIdentifier;
  body["product"] = static_cast<unsigned int>(product);
  return body;
}

void PendingTasksResponse::Assign(const Tree& body) {
  const Tree& list = body.get_child("tasks");
  if (!list.data().empty()) throw TaskError("tasks is no list");
  std::vector<Schedule> good;
  std::vector<RefusedTask> bad;
  for (const auto& [key, node] : list) {
    if (!key.empty()) throw TaskError("tasks is no list");
    Schedule task;
    try {
      ReadTask(node, task);
      good.push_back(std::move(task));
    } catch (const TaskError& error) {
      bad.push_back({std::move(task), error.what()});
    }
  }
  schedules = std::move(good);
  refused = std::move(bad);
}

}  // namespace Norvik::Common
