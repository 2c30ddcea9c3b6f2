#include "module/Actions/Mac/RemoteAdministration.h"

#include <unistd.h>

#include <boost/variant/get.hpp>

#include "module/Actions/Mac/AdministeredMachine.h"
#include "platform/compat/SentAppleEvents.h"
#include "support/Files.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;

constexpr unsigned int ALL[] = {1011, 1013, 1012, 1002, 1003, 1000, 1019, 1020, 1015, 1016, 1017,
                                1018, 1021, 1022, 1006, 1007, 1010, 1045, 1008, 1009, 1024, 1023,
                                1026, 1025, 1032, 1029, 1030, 1031, 1001, 1039, 1062, 1070, 1073};
constexpr const char* NAMES[] = {"cmd",  "type", "name", "password", "domain", "id",
                                 "path", "file", "ext",  "date",     "Guid"};

using RemoteAdministrationTest = AdministeredMachine;

TEST_F(RemoteAdministrationTest, WhatIsRefusedOrLacksAParameterDoesNothing) {
  Follow("refused.txt");
  for (const unsigned int code : {1019U, 1020U, 1015U, 1016U, 1017U, 1018U, 1021U, 1022U, 1039U}) {
    EXPECT_EQ(Ask(code, {{"path", "x"}}), Lines{"text Not supported operation"}) << code;
  }
}

TEST_F(RemoteAdministrationTest, ParametersOfAnyKindAreSurvived) {
  const auto tryAll = [&](const Common::ActionParameters& parameters) {
    for (const unsigned int code : ALL) {
      try {
        module.Run(code, parameters);
      } catch (const boost::bad_get&) {
      }
    }
  };
  tryAll({});
  Common::ActionParameters values;
  for (const char* name : NAMES) values.Set(name, true);
  tryAll(values);
  for (const std::string& text :
       {std::string(), std::string("|||\\"), std::string("-1"), std::string(200000, 'a'),
        std::string("%1%%s%n{}\n'\"`$(exit 3)&\\"), std::string("99999999999999999999"),
        std::string("\0x", 2), std::string("\xC2\xB4/../../\xF0\x9F\x98\x80")}) {
    for (const char* name : NAMES) {
      values.Set(name, wxString::FromUTF8(text.data(), text.size()));
    }
    tryAll(values);
    values.Set("type", wxString("0"));
    tryAll(values);
  }
  EXPECT_TRUE(FilesBelow(folder.Path()).empty());
}

TEST_F(RemoteAdministrationTest, ARehearsalDoesNothingWhateverIsAsked) {
  AddTool("bin/evil", "echo x >> \"$M/evidence\"");
  for (const char* tool : {"launchctl", "lpadmin", "sharing", "sh", "rm"}) {
    AddTool(std::string("bin/") + tool, "[ \"$1\" = -l ] || evil");
  }
  AddTool("bin/lpstat", "echo 'device for $(evil): x'");
  for (const char* path : {"x/a", "x/evil", "Users/ada/b.evil", "home/c.evil"}) {
    AddFile(std::string("root/") + path);
  }
  for (const auto& place : {host.Outbox(), host.Previous()}) WriteFile(place / "a.jsonkob", "x");
  const auto files = FilesBelow(folder.Path());
  const auto documents = FilesBelow(host.Folder());
  Common::ActionParameters values;
  const Platform::Rehearsal rehearsal;
  for (const std::string& text :
       {std::string("evil"), std::string("$(evil)"), std::string("`evil`"), std::string(";evil;"),
        std::string("|evil|/x/a|/x"), std::string("a\nevil\n"), std::string("root"),
        std::string("0"), std::string("-1"), std::to_string(::getpid()),
        std::string("20260101000000")}) {
    for (const char* name : NAMES) values.Set(name, wxString::FromUTF8(text.c_str()));
    values.Set("Guid", wxString("agent-1"));
    for (const char* type : {"0", "1", "2", "3"}) {
      values.Set("type", wxString(type));
      for (const unsigned int code : ALL) module.Run(code, values);
      values.Set("cmd", wxString("evil"));
    }
  }
  EXPECT_EQ(FilesBelow(folder.Path()), files);
  EXPECT_EQ(FilesBelow(host.Folder()), documents);
  EXPECT_THAT(TheWrappedCalls().made, testing::Each(testing::EndsWith(" 0")));
  EXPECT_TRUE(Platform::TakeSentAppleEvents().empty());
  std::set<int> kinds;
  for (const auto& step : rehearsal.Steps()) kinds.insert(step.kind);
  EXPECT_EQ(kinds.size(), 6U) << "there was something of each kind that it could have done";
}

}  // namespace
}  // namespace Norvik::KOB
