#include "cli/why/WhyText.h"

#include <boost/algorithm/string/join.hpp>
#include <regex>
#include <sstream>
#include <vector>

#include "cli/why/LedgerView.h"
#include "common/text/Text.h"

namespace Norvik::Cli {

namespace {

using Texts = std::vector<std::string>;

constexpr std::size_t WIDTH = 100;

std::string JoinedKeys(const OrderedJson& keys) {
  return boost::algorithm::join(keys.get<Texts>(), ", ");
}

/// Without the marks that the text has for the page in docs/: `code`, **strong**, [label](link).
std::string Plain(const std::string& text) {
  static const std::regex link(R"(\[([^\]]*)\]\([^)]*\))");
  static const std::regex mark("`|\\*\\*");
  return std::regex_replace(std::regex_replace(text, link, "$1"), mark, "");
}

/// Words in lines of at most `WIDTH`, as far as words permit; all but the first line are indented.
std::string Wrapped(const std::string& first, const std::string& text) {
  std::istringstream words(Common::EscapeControls(text));
  const std::string indent(first.size(), ' ');
  std::string lines;
  std::string line = first;
  for (std::string word; words >> word;) {
    if (line.size() > first.size() && line.size() + word.size() >= WIDTH) {
      lines += line + "\n";
      line = indent;
    }
    line += (line.size() > first.size() ? " " : "") + word;
  }
  return lines + line + "\n";
}

std::string CountText(const OrderedJson& records) {
  if (records.is_null()) return "no document";
  return records == 1 ? "1 record" : records.dump() + " records";
}

/// What keeps a section from being filled, in short.
std::string StateText(const OrderedJson& section) {
  if (section["filled"] == "never") return "never filled";
  const auto& last = section["last"];
  const bool isEmpty = !last.is_null() && last["records"] == 0;
  Texts problems;
  for (const auto& source : section["asked"]) {
    if (source["there"] == true) continue;
    problems.push_back(source["name"].get<std::string>() + ": " +
                       source["problem"].get<std::string>());
  }
  const auto& permission = section["permission"];
  if (permission["has"] == false) {
    problems.push_back("no permission: " + permission["needs"].get<std::string>());
  }
  for (const auto& tool : section["trouble"]) {
    // A missing tool is among the sources; one may also end badly and have said enough.
    if (!HeldUp(tool) && (!isEmpty || tool["outcome"] == "missing")) continue;
    problems.push_back(tool["command"].get<std::string>() + ": " +
                       tool["outcome"].get<std::string>());
  }
  if (problems.empty() && isEmpty) {
    return "all there, but empty; in general: " + Plain(section["emptyOrOdd"].get<std::string>());
  }
  if (problems.empty()) return "all there";
  return Common::EscapeControls(boost::algorithm::join(problems, "; "));
}

std::string PermissionText(const OrderedJson& permission) {
  if (permission["needs"].is_null()) return "none is needed";
  const std::string needs = permission["needs"];
  if (permission["has"].is_null()) {
    return needs + "; this process cannot tell whether the system grants it";
  }
  return needs + (permission["has"] == true ? ", which this process has"
                                            : ", which this process does not have");
}

std::string LastText(const OrderedJson& last) {
  std::string text = CountText(last["records"]) + " in " + last["milliseconds"].dump() +
                     " ms, in the run of " + last["begun"].get<std::string>();
  if (!last["with"].empty()) text += ", together with " + JoinedKeys(last["with"]);
  return text;
}

std::string AskedLines(const OrderedJson& asked) {
  std::string text;
  for (const auto& source : asked) {
    const std::string path = source["path"];
    const std::string state = source["there"] == true ? (path.empty() ? "there" : path)
                                                      : source["problem"].get<std::string>();
    const std::string kind = source["kind"];
    const bool isNamed = kind == "tool" || kind == "file" || kind == "call";
    text += Wrapped("  asks: ",
                    (isNamed ? kind + " " : "") + source["name"].get<std::string>() + ": " + state);
  }
  return text;
}

}  // namespace

std::string SectionsText(const OrderedJson& sections) {
  std::vector<std::vector<OrderedJson>> rows;
  for (const auto& section : sections) {
    const auto& last = section["last"];
    rows.push_back({section["key"], last.is_null() ? "-" : CountText(last["records"]),
                    last.is_null() ? OrderedJson("-") : last["milliseconds"],
                    last.is_null() ? "" : "ms", StateText(section)});
  }
  std::istringstream table(TableText(rows));
  std::string text;
  std::string line;
  for (const auto& section : sections) {
    std::getline(table, line);
    text += line + "\n" + Wrapped("    source: ", section["source"].get<std::string>());
  }
  return text;
}

std::string KeyText(const OrderedJson& key) {
  const auto textAt = [&](const char* name) { return key[name].get<std::string>(); };
  std::string text = textAt("key") + ": " + Plain(textAt("description")) + "\n";
  text += Wrapped("  source: ", textAt("source"));
  if (key["filled"] == "never") text += "  filled: never, by this version of the agent\n";
  if (key["filled"] == "constant") text += "  filled: with the same in each document\n";
  text += AskedLines(key["asked"]);
  text += "  permission: " + PermissionText(key["permission"]) + "\n";
  const auto& last = key["last"];
  text += Wrapped("  last time: ", last.is_null() ? "not recorded" : LastText(last));
  if (!last.is_null()) {
    for (const auto& tool : last["tools"]) {
      text += Wrapped("    tool: ", tool["command"].get<std::string>() + ", " +
                                        tool["milliseconds"].dump() + " ms, " +
                                        tool["outcome"].get<std::string>());
    }
  }
  for (const auto& tool : key["trouble"]) {
    text += Wrapped("  trouble: ", tool["command"].get<std::string>() + ": " +
                                       tool["outcome"].get<std::string>() + ", in " +
                                       tool["runs"].dump() + " of the recorded runs");
  }
  text += "  on macOS:\n" + Wrapped("  - the section: ", Plain(textAt("emptyOrOdd")));
  for (const auto& note : key["notes"]) text += Wrapped("  - ", Plain(note));
  return text;
}

std::string LedgerText(const OrderedJson& ledger) {
  if (ledger["runs"] == 0) {
    return Wrapped("last times: ", "none, " + ledger["problem"].get<std::string>());
  }
  std::vector<std::vector<OrderedJson>> rows;
  for (const auto& section : ledger["costliest"]) {
    rows.push_back({"  " + JoinedKeys(section["keys"]), section["milliseconds"], "ms, last time",
                    section["last"], "ms",
                    Common::EscapeControls(section["tool"].get<std::string>())});
  }
  const std::string runs = ledger["runs"].dump();
  return "costliest sections, on average over " + (ledger["runs"] == 1 ? "1 run" : runs + " runs") +
         ":\n" + TableText(rows);
}

}  // namespace Norvik::Cli
