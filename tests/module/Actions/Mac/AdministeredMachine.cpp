#include "module/Actions/Mac/AdministeredMachine.h"

#include <algorithm>
#include <boost/algorithm/string/join.hpp>
#include <boost/algorithm/string/replace.hpp>
#include <fstream>
#include <sstream>
#include <utility>

#include "common/text/Text.h"
#include "platform/compat/SentAppleEvents.h"
#include "support/Files.h"

namespace Norvik::Tests {

namespace fs = boost::filesystem;
using namespace KOB;
using boost::replace_all_copy;

namespace {

std::vector<std::string> RowsOf(const Common::ActionResponseTable& table) {
  std::vector<std::string> rows;
  for (const auto& row : table.Rows()) {
    std::vector<std::string> cells;
    for (const auto& cell : row) cells.push_back(boost::get<std::string>(cell));
    rows.push_back(boost::join(cells, "|"));
  }
  return rows;
}

}  // namespace

AdministeredMachine::AdministeredMachine() {
  TheWrappedCalls() = {};
  Platform::TakeSentAppleEvents();
}

AdministeredMachine::~AdministeredMachine() { Platform::SetAppleEventAnswer(-600); }

void AdministeredMachine::AddFile(const std::string& path, const std::string& content) {
  fs::create_directories((folder / path).parent_path());
  WriteFile(folder / path, content);
}

void AdministeredMachine::AddTool(const std::string& path, const std::string& script) {
  AddFile(path, "#!/bin/sh\nM='" + folder.Path().string() + "'\n" + script + "\n");
  fs::permissions(folder / path, fs::owner_all);
}

void AdministeredMachine::AddRecordedTool(const std::string& path, const std::string& script) {
  AddTool(path, "echo \"ran ${0##*/} $*\" >> \"$M/ran\"\n" + script);
}

AdministeredMachine::Lines AdministeredMachine::Ask(
    unsigned int code, const std::map<std::string, std::string>& texts) {
  Common::ActionParameters parameters;
  for (const auto& [name, text] : texts) {
    parameters.Set(name, Common::WxStringFromStdString(text));
  }
  const std::size_t logged = host.log.Lines().size();
  const auto response = module.Run(code, parameters);
  Lines lines = RowsOf(response.table);
  // A folder is listed in the order of its file system.
  if (code == ACTION_LIST_FILES || code == ACTION_LIST_FOLDERS) {
    std::sort(lines.begin() + (response.table.HasTitles() ? 1 : 0), lines.end());
  }
  if (response.success) lines.push_back("success");
  if (response.text) lines.push_back("text " + *response.text);
  for (const auto& status : host.communications->TakeStatuses())
    lines.push_back("status " + status);
  std::istringstream calls(ContentOf(folder / "ran"));
  for (std::string call; std::getline(calls, call);) lines.push_back(call);
  fs::remove(folder / "ran");
  for (const auto& call : std::exchange(TheWrappedCalls().made, {})) lines.push_back(call);
  for (const auto& event : Platform::TakeSentAppleEvents()) {
    lines.push_back("event " + event.eventClass + event.eventId + event.addressType +
                    std::to_string(event.address.size()));
  }
  for (const auto& action : host.actions->Texts()) lines.push_back(action);
  host.actions->Forget();
  const auto log = host.log.Lines();
  for (std::size_t i = logged; i < log.size(); ++i) {
    if (log[i].level == 2) lines.push_back("error " + log[i].text);
    if (log[i].level == 3) lines.push_back("warning " + log[i].text);
  }
  for (auto& line : lines) line = replace_all_copy(line, "\n", "\\n");
  return lines;
}

void AdministeredMachine::Follow(const std::string& file) {
  std::ifstream stream(NORVIK_SOURCE_DIR "/tests/module/Actions/Mac/requests/" + file);
  ASSERT_TRUE(stream) << file;
  Lines request;
  for (std::string line; std::getline(stream, line) || !request.empty(); line.clear()) {
    if (!line.empty()) {
      request.push_back(line);
    } else if (!request.empty()) {
      FollowOne(std::exchange(request, {}));
    }
  }
}

void AdministeredMachine::FollowOne(const Lines& lines) {
  std::string name;
  std::string input;
  unsigned int code = 0;
  std::map<std::string, std::string> texts;
  Lines outcome;
  for (const auto& line : lines) {
    const std::string rest = line.substr(std::min<std::size_t>(line.size(), 2));
    const auto equals = rest.find('=');
    if (line[0] == '#') {
      name = rest;
    } else if (line[0] == '<') {
      input += rest + "\n";
    } else if (line[0] != '>') {
      outcome.push_back(replace_all_copy(line, "$ROOT", (folder / "root").string()));
    } else if (equals == std::string::npos) {
      code = static_cast<unsigned int>(std::stoul(rest));
    } else {
      texts[rest.substr(0, equals)] = replace_all_copy(rest.substr(equals + 1), "\\n", "\n");
    }
  }
  if (!input.empty()) AddFile("input", input);
  EXPECT_EQ(boost::join(Ask(code, texts), "\n"), boost::join(outcome, "\n")) << name;
}

}  // namespace Norvik::Tests
