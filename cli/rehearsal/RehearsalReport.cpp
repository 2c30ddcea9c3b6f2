#include "cli/rehearsal/RehearsalReport.h"

#include "common/text/Text.h"

namespace Norvik::Cli {

using namespace Common;
using namespace Host;

namespace {

using Platform::RehearsedStep;

const char* NameOf(RehearsedStep::Kind kind) {
  static constexpr const char* NAMES[] = {"asked", "shell", "program", "call", "remove", "event"};
  return NAMES[kind];
}

const char* NameOf(StartedAction::Kind kind) {
  static constexpr const char* NAMES[] = {"run", "queue", "once", "create", "replace", "schedule"};
  return NAMES[kind];
}

bool IsPeriodic(const StartedAction& action) { return action.kind >= StartedAction::PERIODIC; }

std::string FirstWord(const std::string& text) { return text.substr(0, text.find(' ')); }

/// One line: a newline in a shell line separates two commands.
std::string Line(const std::string& what, const std::string& text) {
  return what + ": " + EscapeControls(text) + "\n";
}

std::string TextOf(const RehearsedStep& step) {
  std::string text = step.text;
  if (!step.detail.empty()) text += " (" + step.detail + ")";
  if (!step.failure.empty()) text += ", which would fail: " + step.failure;
  return Line(NameOf(step.kind), text);
}

std::string TextOf(const std::vector<RehearsedStep>& steps) {
  std::string text;
  for (std::size_t i = 0; i < steps.size(); ++i) {
    std::size_t alike = 0;
    while (steps[i].kind == RehearsedStep::ASKED && i + alike + 1 < steps.size() &&
           steps[i + alike + 1].kind == RehearsedStep::ASKED &&
           FirstWord(steps[i + alike + 1].text) == FirstWord(steps[i].text)) {
      ++alike;
    }
    if (alike < 3) {
      text += TextOf(steps[i]);
      continue;
    }
    text += Line("asked", steps[i].text + ", and " + std::to_string(alike) + " more times " +
                              FirstWord(steps[i].text));
    i += alike;
  }
  return text;
}

std::string TextOf(const StartedAction& action) {
  std::string text = std::string(NameOf(action.kind)) + " " + std::to_string(action.code);
  if (!action.name.empty()) text += " " + action.name;
  if (action.kind == StartedAction::ONCE) {
    text += " after " + std::to_string(action.delay.count()) + " s";
  } else if (IsPeriodic(action)) {
    text += " every " + std::to_string(action.period.count()) + " s from " + TimeText(action.next);
  }
  return Line("start", text);
}

std::string Before(const std::string& text) { return " (was " + text + ")"; }

std::string TextOf(const StateChanges& changes) {
  std::string text;
  for (const auto& value : changes.values) {
    text += Line("database", value.table + " " + value.key +
                                 (value.after ? " = " + *value.after : " removed") +
                                 (value.before ? Before(*value.before) : ""));
  }
  for (const auto& table : changes.tables) {
    text += Line("database", table.table + " " + std::to_string(table.rowsAfter) + " rows" +
                                 Before(std::to_string(table.rowsBefore)));
  }
  for (const auto& file : changes.files) {
    const auto bytes = [](std::uintmax_t count) { return std::to_string(count) + " bytes"; };
    text += Line("file", file.file + (file.bytesAfter ? ", " + bytes(*file.bytesAfter) : " gone") +
                             (file.bytesBefore ? Before(bytes(*file.bytesBefore)) : ""));
  }
  return text;
}

std::string TextOf(const RehearsedCommunications::Messages& messages) {
  std::string text;
  for (const auto& question : messages.questions) text += Line("question", question);
  for (const auto& [session, message] : messages.toSessions) {
    text += Line("message", std::to_string(message.code) + " to the session " +
                                std::to_string(session) + ": " + message.key + "=" + message.value);
  }
  return text;
}

const char* NameOf(Common::Logger::Level level) {
  return level == Common::Logger::LEVEL_WARNING ? "warning" : "error";
}

OrderedJson NodeOf(const RehearsedStep& step) {
  return {{"kind", NameOf(step.kind)},
          {"text", step.text},
          {"detail", step.detail},
          {"failure", step.failure}};
}

OrderedJson NodeOf(const StartedAction& action) {
  OrderedJson node = {{"how", NameOf(action.kind)}, {"code", action.code}, {"name", action.name}};
  if (action.kind == StartedAction::ONCE) node["delaySeconds"] = action.delay.count();
  if (IsPeriodic(action)) {
    node["periodSeconds"] = action.period.count();
    node["next"] = std::chrono::system_clock::to_time_t(action.next);
  }
  return node;
}

template <class Value>
OrderedJson OrNull(const boost::optional<Value>& value) {
  return value ? OrderedJson(*value) : OrderedJson(nullptr);
}

OrderedJson NodeOf(const StateChanges& changes) {
  OrderedJson values = OrderedJson::array();
  OrderedJson tables = OrderedJson::array();
  OrderedJson files = OrderedJson::array();
  for (const auto& it : changes.values) {
    values.push_back({{"table", it.table},
                      {"key", it.key},
                      {"before", OrNull(it.before)},
                      {"after", OrNull(it.after)}});
  }
  for (const auto& it : changes.tables) {
    tables.push_back(
        {{"table", it.table}, {"rowsBefore", it.rowsBefore}, {"rowsAfter", it.rowsAfter}});
  }
  for (const auto& it : changes.files) {
    files.push_back({{"file", it.file},
                     {"bytesBefore", OrNull(it.bytesBefore)},
                     {"bytesAfter", OrNull(it.bytesAfter)}});
  }
  return {{"values", values}, {"tables", tables}, {"files", files}};
}

OrderedJson NodeOf(const RehearsedCommunications::Messages& messages) {
  OrderedJson list = OrderedJson::array();
  for (const auto& [session, message] : messages.toSessions) {
    list.push_back({{"session", session},
                    {"code", message.code},
                    {"key", message.key},
                    {"value", message.value}});
  }
  return list;
}

template <class Item>
OrderedJson ListOf(const std::vector<Item>& items) {
  OrderedJson list = OrderedJson::array();
  for (const auto& item : items) list.push_back(NodeOf(item));
  return list;
}

}  // namespace

RehearsalReport::RehearsalReport(unsigned int code, const RehearsedAction& action)
    : code_(code), action_(action) {
  outcome_.response = action_.response;
  outcome_.statuses = action_.messages.statuses;
  outcome_.failure = action_.failure;
}

std::string RehearsalReport::ToText() const {
  std::string text = "rehearsal of " + std::to_string(code_) + ": nothing of this has happened\n";
  text += TextOf(action_.steps) + TextOf(action_.messages);
  for (const auto& action : action_.started) text += TextOf(action);
  text += TextOf(action_.changes);
  for (const auto& [level, line] : action_.logged) text += Line(NameOf(level), line);
  return text + Cli::ToText(outcome_);
}

OrderedJson RehearsalReport::ToJson() const {
  OrderedJson node = OrderedJson::parse(ToJsonLine(code_, outcome_));
  OrderedJson log = OrderedJson::array();
  for (const auto& [level, line] : action_.logged) {
    log.push_back({{"level", static_cast<int>(level)}, {"text", line}});
  }
  node["rehearsal"] = {
      {"steps", ListOf(action_.steps)},       {"questions", action_.messages.questions},
      {"messages", NodeOf(action_.messages)}, {"actions", ListOf(action_.started)},
      {"changes", NodeOf(action_.changes)},   {"log", log}};
  return node;
}

}  // namespace Norvik::Cli
