#include <cmath>
#include <cstdio>

#include "forge/Mac.h"

namespace Norvik::Forge {

namespace {

/// Degrees to about a hundred metres.
double Rounded(double degrees) { return std::round(degrees * 1000) / 1000; }

Json UserRecord(const std::string& name, const std::string& fullName) {
  return {{"description", fullName},   {"enabled", true},         {"fullUserName", ""},
          {"locked", false},           {"passwordChange", false}, {"passwordExpire", false},
          {"passwordRequired", false}, {"userName", name}};
}

struct Group {
  const char* name;
  bool hasOwner;
  bool hasRoot;
};
constexpr Group GROUPS[] = {{"wheel", false, true}, {"admin", true, true}, {"staff", true, false}};

struct Daemon {
  const char* name;
  const char* command;
  const char* startupMode;
  const char* state;
};
constexpr Daemon DAEMONS[] = {
    {"com.fjord.indexd", "/usr/libexec/fjord/indexd", "Enabled", "Running"},
    {"com.fjord.netd", "/usr/sbin/fjordnetd", "Enabled", "Running"},
    {"com.fjord.timer", "", "Enabled", "Stopped"},
    {"com.skerry.helper", "/Library/PrivilegedHelperTools/com.skerry.helper", "Enabled", "Running"},
    {"com.fjord.old", "/usr/libexec/fjord/old", "Disabled", "Stopped"}};

Json ServiceRecord(const std::string& name, const std::string& command, const char* startupMode,
                   const char* state) {
  return {{"command", command}, {"description", ""},          {"displayName", name},
          {"name", name},       {"startupMode", startupMode}, {"state", state}};
}

Json AdapterRecord(const std::string& name, const std::string& type, int hardwareType,
                   const std::string& macAddress) {
  return {{"addresses", nullptr},
          {"description", type},
          {"dhcpServers", nullptr},
          {"dnsServers", nullptr},
          {"gateways", nullptr},
          {"hardwareType", hardwareType},
          {"macAddress", macAddress},
          {"manufacturer", ""},
          {"mtu", 1500},
          {"name", name},
          {"speedMbps", 0},
          {"type", type},
          {"vlan", 0}};
}

std::string LinkAddress(Random random) {
  char text[13];
  std::snprintf(text, sizeof(text), "02%010llX",
                static_cast<unsigned long long>(random.Bits() & 0xFF'FFFF'FFFF));
  return text;
}

}  // namespace

Json Mac::OperatingSystem(int day) const {
  double since = 0;
  const Json& release = ReleaseOn(day, &since);
  const Random sites = random_.For("site");
  const Json& home = Drawn(profiles_.Rows("sites"), sites.For(0));
  return {{"architecture", IsIntel() ? "x86_64" : "arm64"},
          {"bootVolume", "/dev/disk3s1s1"},
          {"build", release["build"]},
          {"codeName", ""},
          {"family", "macOS"},
          {"installDate", TimeOf(since, true)},
          {"kernel", "Darwin"},
          {"kernelVersion", release["kernel"]},
          {"language", home["language"]},
          {"name", "macOS"},
          {"organization", ""},
          {"registeredUser", ""},
          {"serialNumber", serial_},
          {"timeZone", (*PlaceOn(day).site)["timeZone"]},
          {"version", release["version"]}};
}

Json Mac::Users(int day) const {
  Json users = Json::array(
      {UserRecord("nobody", "Unprivileged User"), UserRecord("root", "System Administrator"),
       UserRecord("daemon", "System Services"), UserRecord("itadmin", "IT Support")});
  for (const Person& person : People(day)) {
    users.push_back(UserRecord(person.userName, person.fullName));
  }
  return users;
}

Json Mac::Groups(int day) const {
  const std::vector<Person> people = People(day);
  Json groups = Json::array();
  for (const Group& group : GROUPS) {
    Json members = Json::array();
    if (group.hasRoot) members.push_back({{"name", "root"}});
    if (group.hasOwner && group.hasRoot) members.push_back({{"name", "itadmin"}});
    for (const Person& person : people) {
      if (group.hasOwner && (!group.hasRoot || &person == &people.front())) {
        members.push_back({{"name", person.userName}});
      }
    }
    groups.push_back({{"description", ""},
                      {"group", nullptr},
                      {"name", group.name},
                      {"user", NullIfEmpty(std::move(members))}});
  }
  return groups;
}

Json Mac::Services(int day) const {
  Json services = Json::array();
  for (const Daemon& daemon : DAEMONS) {
    services.push_back(
        ServiceRecord(daemon.name, daemon.command, daemon.startupMode, daemon.state));
  }
  for (const Installation& installation : installations_) {
    const std::string& name = installation.program->serviceName;
    if (name.empty() || day < installation.from || day >= installation.until) continue;
    const Random service = random_.For("service", name);
    const Period state = PeriodOf(service, 60, day);
    const bool runs = !service.For(state.number).Chance(0.08);
    services.push_back(ServiceRecord(name, "/Library/PrivilegedHelperTools/" + name, "Enabled",
                                     runs ? "Running" : "Stopped"));
  }
  return services;
}

Json Mac::Adapters(int day) const {
  const Place place = PlaceOn(day);
  const std::string site = (*place.site)["name"];
  const Random lease = random_.For("lease", place.atHome ? "home" : site);
  Random host = lease.For(PeriodOf(lease, 25, day).number);
  const int network = (*place.site)["network"];
  const std::string subnet =
      place.atHome ? "192.168." + std::to_string(random_.For("router").Below(4))
                   : "10." + std::to_string(network) + "." + std::to_string(host.Below(250));
  const std::string gateway = subnet + ".1";
  const std::string address = subnet + "." + std::to_string(2 + host.Below(250));
  const std::string resolver = place.atHome ? gateway : "10." + std::to_string(network) + ".0.53";

  const bool byCable = !IsLaptop() || (!place.atHome && !ExternalDisplay(0, day).is_null());
  Json adapters = Json::array(
      {AdapterRecord("bridge0", "Thunderbolt Bridge", 209, LinkAddress(random_.For("link", 1))),
       AdapterRecord("en0", IsLaptop() ? "Wi-Fi" : "Ethernet", 6,
                     LinkAddress(random_.For("link", 0))),
       AdapterRecord("en1", IsLaptop() ? "Thunderbolt 1" : "Wi-Fi", 6,
                     LinkAddress(random_.For("link", 1)))});
  if (IsLaptop() && byCable) {
    adapters.push_back(
        AdapterRecord("en7", "USB 10/100/1000 LAN", 6, LinkAddress(random_.For("link", 7))));
  }
  Json& connected = IsLaptop() && byCable ? adapters.back() : adapters[1];
  connected["addresses"] = Json::array({Json{{"address", address}, {"mask", "255.255.255.0"}}});
  connected["gateways"] = Json::array({gateway});
  connected["dnsServers"] = Json::array({resolver});
  connected["dhcpServers"] = Json::array({gateway});
  if (byCable) connected["speedMbps"] = 1000;
  return adapters;
}

Json Mac::Location(int day) const {
  if (random_.For("no location").Chance(0.35)) return nullptr;
  const Place place = PlaceOn(day);
  const std::string site = (*place.site)["name"];
  Random desk = random_.For("desk", site, place.atHome);
  const double radius = place.atHome ? 0.2 : 0.003;
  return {{"acceleration", -1},
          {"height", std::round((*place.site)["height"].get<double>() + desk.Between(0, 20))},
          {"latitude",
           Rounded((*place.site)["latitude"].get<double>() + desk.Between(-radius, radius))},
          {"longitude",
           Rounded((*place.site)["longitude"].get<double>() + desk.Between(-radius, radius))}};
}

/// Those of the sites where the Mac stays, so that a trip changes none.
Json Mac::Printers(int day) const {
  const Random sites = random_.For("site");
  const Json& site = Drawn(profiles_.Rows("sites"), sites.For(PeriodOf(sites, 900, day).number));
  const std::string place = site["name"];
  Json printers = Json::array();
  for (const Json& printer : profiles_.Rows("printers")) {
    const std::string name = printer["name"];
    if (!fleet_.For("printer", place, name).Chance(0.7)) continue;
    const Random own = random_.For("printer", place, name);
    if (!own.For(PeriodOf(own, 300, day).number).Chance(0.4)) continue;
    printers.push_back(
        {{"description", " " + printer["description"].get<std::string>()},
         {"driverName", printer["driver"]},
         {"manufacturer", printer["manufacturer"]},
         {"name", name},
         {"port", "ipp://" + name + "." + site["domain"].get<std::string>() + "/ipp/print"}});
  }
  return NullIfEmpty(std::move(printers));
}

Json Mac::Mappings(int day) const {
  Json mappings = Json::array({Json{{"path", "map auto_home"},
                                    {"server", "map auto_home"},
                                    {"unit", "/System/Volumes/Data/home"}}});
  const Place place = PlaceOn(day);
  const Random drive = random_.For("drive");
  if (!place.atHome && drive.For("uses").Chance(0.3)) {
    const std::string server = "files." + (*place.site)["domain"].get<std::string>();
    mappings.push_back({{"path", "//" + People(day).front().userName + "@" + server + "/projects"},
                        {"server", server},
                        {"unit", "/Volumes/projects"}});
  }
  return mappings;
}

Json Mac::Shares(int day) const {
  if (!random_.For("shares").Chance(0.12)) return nullptr;
  const Person owner = People(day).front();
  const std::string name = owner.fullName + "\xE2\x80\x99s Public Folder";
  return Json::array({Json{{"description", " " + name},
                           {"name", name},
                           {"path", " /Users/" + owner.userName + "/Public"},
                           {"permissions", nullptr},
                           {"type", "Shared Folder"}}});
}

}  // namespace Norvik::Forge
