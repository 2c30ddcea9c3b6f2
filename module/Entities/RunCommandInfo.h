#pragma once

#include <wx/string.h>

#include "common/records/InventoryRecord.h"

namespace Norvik::KOB {

/// A command that runs when the system starts or a user logs on.
struct RunCommandInfo final : Common::InventoryRecord<RunCommandInfo> {
  RunCommandInfo() = default;
  explicit RunCommandInfo(const ptree& node) { Read(node); }

  wxString name;
  wxString command;
  wxString type;
  wxString path;

  static constexpr auto Fields() {
    return FieldTable(Field("name", &RunCommandInfo::name, Conversion::Locale),
                      Field("command", &RunCommandInfo::command, Conversion::Locale),
                      Field("type", &RunCommandInfo::type, Conversion::Locale),
                      Field("path", &RunCommandInfo::path, Conversion::Locale));
  }
  static constexpr auto Key() { return &RunCommandInfo::name; }
  static constexpr auto Kept() {
    return FieldTable(Field("command", &RunCommandInfo::command),
                      Field("name", &RunCommandInfo::name), Field("path", &RunCommandInfo::path));
  }
};

}  // namespace Norvik::KOB
