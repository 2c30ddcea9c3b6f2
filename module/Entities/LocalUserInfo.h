#pragma once

#include <wx/string.h>

#include <list>

#include "common/records/InventoryRecord.h"

namespace Norvik::KOB {

/// The local accounts. The document holds the two lists as sections of their own; the container
/// itself is null in JSON.
struct LocalUserInfo final : Common::ISerializerJson {
  struct GroupSettings final : Common::InventoryRecord<GroupSettings> {
    GroupSettings() = default;
    explicit GroupSettings(const ptree& node) { Read(node); }

    wxString name;
    wxString description;
    std::list<wxString> users;
    std::list<wxString> groups;

    static constexpr auto Fields() {
      return FieldTable(
          Field("name", &GroupSettings::name), Field("description", &GroupSettings::description),
          Names("user", &GroupSettings::users), Names("group", &GroupSettings::groups));
    }
    static constexpr auto Key() { return &GroupSettings::name; }
    static constexpr auto Kept() { return FieldTable(Field("name", &GroupSettings::name)); }
  };

  struct UserSettings final : Common::InventoryRecord<UserSettings> {
    UserSettings() = default;
    explicit UserSettings(const ptree& node) { Read(node); }

    wxString userName;
    wxString description;
    bool enabled = false;
    bool locked = false;
    bool passwordChange = false;
    bool passwordExpire = false;
    bool passwordRequired = false;
    wxString fullUserName;

    static constexpr auto Fields() {
      return FieldTable(Field("userName", &UserSettings::userName),
                        Field("description", &UserSettings::description),
                        FieldOrElse("enabled", &UserSettings::enabled, true),
                        // Deliberately true as well: a user without this key counts as locked.
                        FieldOrElse("locked", &UserSettings::locked, true),
                        Field("passwordChange", &UserSettings::passwordChange),
                        Field("passwordExpire", &UserSettings::passwordExpire),
                        Field("passwordRequired", &UserSettings::passwordRequired),
                        Field("fullUserName", &UserSettings::fullUserName));
    }
    static constexpr auto Key() { return &UserSettings::userName; }
    static constexpr auto Kept() { return FieldTable(Field("userName", &UserSettings::userName)); }
  };

  operator json::JSON() const override { return {}; }

  std::list<GroupSettings> groups;
  std::list<UserSettings> users;
};

}  // namespace Norvik::KOB
