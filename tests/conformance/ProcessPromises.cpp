// Promises of the process, and of what it owns on disk.
#include <boost/filesystem/operations.hpp>
#include <cstdio>

#include "conformance/Promises.h"

namespace Norvik::Conformance {

namespace {

using namespace Common;

constexpr unsigned int PRIVATE_MODE = 0700;

void CharactersAreUtf8(Subject& subject) {
  const std::string& set = subject.AtMake().codeSet;
  Expect(set == "UTF-8", "the characters of LC_CTYPE are " + set);
}

void NumbersAreC(Subject& subject) {
  const std::string& numeric = subject.AtMake().numeric;
  Expect(numeric == "C" || numeric == "POSIX", "LC_NUMERIC is " + numeric);
}

void FolderIsPrivate(Subject& subject) {
  const std::string wanted = subject.Options().dataFolder.string();
  const std::string& used = subject.AtMake().dataFolder;
  Expect(used == wanted, "the data folder is " + used + ", not " + wanted);
  Expect(subject.FolderMode().is_initialized(), "there is no data folder");
  char mode[16];
  std::snprintf(mode, sizeof mode, "%04o", *subject.FolderMode());
  Expect(*subject.FolderMode() == PRIVATE_MODE, std::string("its mode is ") + mode);
}

/// Uses each service, so that one that changes the process does so.
void UseServices(Subject& subject) {
  const auto runs = Runs::Make();
  subject.Actions()->RunAction(runs->Action());
  subject.Actions()->QueueAction(runs->Action());
  subject.Identification()->GetFirstInventoryInfo();
  subject.Communications()->ReportTaskStatus({});
  subject.Communications()->NewFileOnOutbox();
  subject.DataBase()->GetTable("DATA", 0, 0, 0);
  Expect(subject.Within([&] { return runs->Count() == 2; }), "the actions did not run");
}

void ProcessIsSteady(Subject& subject) {
  const auto expectSame = [&subject] {
    const std::string difference = ProcessState::Now().DifferenceFrom(subject.AtMake());
    Expect(difference.empty(), difference);
  };
  UseServices(subject);
  subject.Wait(std::chrono::seconds(1));
  expectSame();
  subject.duringDelete = expectSame;
  subject.Stop();
}

}  // namespace

std::vector<Promise> ProcessPromises() {
  return {
      {"ctype-utf8", "The characters of `LC_CTYPE` are UTF-8 when the module is made.",
       CharactersAreUtf8},
      {"numeric-c", "`LC_NUMERIC` is \"C\" when the module is made.", NumbersAreC},
      {"folder-private",
       "The data folder is the host's, and exists with mode 0700 when the module is made.",
       FolderIsPrivate},
      {"process-steady",
       "`LC_CTYPE`, `LC_NUMERIC`, `Paths`, the logger and the current folder do not change while "
       "the module lives.",
       ProcessIsSteady},
  };
}

}  // namespace Norvik::Conformance
