#include "common/commands/Execute.h"

#include <optional>
#include <string_view>
#include <utility>

#include "common/commands/CommandWords.h"
#include "common/text/Text.h"
#include "platform/Accounts.h"
#include "platform/ChildProcess.h"
#include "platform/Rehearsal.h"

namespace Norvik::Common {

Execute::Execute(const wxString& command) : command_(ToUtf8(command)) {}

int Execute::Run(const std::string& arguments) { return RunUnder(nullptr, arguments, nullptr); }

int Execute::RunAs(const wxString& user, const wxString&, const wxString&,
                   const wxString& arguments) {
  const auto account = Platform::AccountOf(ToUtf8(user));
  if (!account) return Refuse("There is no user " + ToUtf8(user));
  return RunUnder(&*account, ToUtf8(arguments), nullptr);
}

int Execute::RunAs(int* processId, short session) {
  const std::string user = Platform::UserOfSession(session);
  const auto account = Platform::AccountOf(user);
  if (user.empty() || !account) return Refuse("No user has the session " + std::to_string(session));
  return RunUnder(&*account, "", processId);
}

int Execute::Refuse(const std::string& reason) {
  Platform::GetSystemChanges()->Note({Platform::RehearsedStep::PROGRAM, command_, "", reason});
  output_ = reason;
  return -1;
}

int Execute::RunUnder(const Platform::ChildAccount* account, const std::string& arguments,
                      int* processId) {
  const std::string line = arguments.empty() ? command_ : command_ + " " + arguments;
  auto words = SplitCommandWords(line);
  if (!words) return Refuse("A quote or a backslash is left open in: " + line);
  if (words->empty()) return Refuse("There is no command");

  output_.clear();
  Platform::ChildCommand child;
  child.words = std::move(*words);
  child.account = account;
  child.onOutput = [this](std::string_view piece) {
    output_ += piece.substr(0, MAX_OUTPUT - output_.size());
  };
  const Platform::ChildResult result = Platform::RunChild(child);
  if (!result.started) {
    output_ = "Unable to start " + child.words.front() + ": " + result.problem;
    return -1;
  }
  if (processId) *processId = static_cast<int>(result.processId);
  return result.exitCode;
}

}  // namespace Norvik::Common
