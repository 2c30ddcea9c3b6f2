#include "module/Actions/Mac/RemoteAdministration.h"

#include <boost/variant/get.hpp>

#include "module/Actions/Mac/AdministeredMachine.h"
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

}  // namespace
}  // namespace Norvik::KOB
