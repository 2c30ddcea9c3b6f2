#include <algorithm>
#include <cmath>

#include "forge/Mac.h"

namespace Norvik::Forge {

namespace {

/// How many releases a Mac may be behind.
constexpr int RELEASES_BEHIND = 8;

Json ProgramRecord(const std::string& name, const std::string& version, const std::string& path,
                   std::int64_t installed) {
  return {{"architecture", "arch_arm_i64"},
          {"category", ""},
          {"description", ""},
          {"installDate", installed},
          {"isPatch", false},
          {"language", ""},
          {"location", path},
          {"name", name},
          {"parentKey", ""},
          {"productCode", ""},
          {"publisher", ""},
          {"releaseType", ""},
          {"signedBy", ""},
          {"sizeBytes", 0},
          {"softwareKey", path},
          {"source", "identified_developer"},
          {"systemComponent", false},
          {"uninstallCommand", ""},
          {"url", ""},
          {"version", version}};
}

}  // namespace

void Mac::ChoosePrograms() {
  constexpr double ARRIVES = 400;  // days until a program that was not there is installed
  constexpr double STAYS = 3000;
  for (const Program& program : profiles_.Programs()) {
    Random random = random_.For("program", program.name);
    if (!random.Chance(program.share)) continue;
    const bool isThere = random.Chance(0.9);
    const double from = isThere ? -random.Exponential(ARRIVES) : random.Exponential(ARRIVES);
    const double until = std::max(from, 0.0) + random.Exponential(STAYS);
    const double phase =
        fleet_.For("release", program.name).For("phase").Unit() * program.days - program.days;
    installations_.push_back({&program, from, until, phase});
  }
}

void Mac::AddProgram(Json& records, const Installation& installation, int day) const {
  if (day < installation.from || day >= installation.until) return;
  const Program& program = *installation.program;
  const Random delays = random_.For("delay", program.name);
  const auto last =
      static_cast<std::int64_t>(std::floor((day - installation.phase) / program.days));
  std::int64_t release = last;
  double reached = installation.from;
  for (; release > last - RELEASES_BEHIND; --release) {
    const double released = installation.phase + static_cast<double>(release) * program.days;
    // What is installed is installed in its newest version.
    if (released <= installation.from) break;
    const double delayed = released + delays.For(release).Exponential(delay_);
    if (delayed > day) continue;
    reached = delayed;
    break;
  }
  records.push_back(ProgramRecord(
      program.name, LaterVersion(program.version, program.step, release + RELEASES_BEHIND),
      "/Applications/" + program.name + ".app", TimeOf(reached, true)));
  Json& record = records.back();
  const bool fromStore = fleet_.For("store", program.name).Chance(0.25);
  record["source"] = fromStore ? "mac_app_store" : "identified_developer";
  record["signedBy"] = fromStore ? "Apple Mac OS Application Signing" : program.signedBy;
  if (!fromStore) record["description"] = program.name + ", \xC2\xA9 " + program.maker;
}

Json Mac::Software(int day) const {
  Json records = Json::array();
  double since = 0;
  const Json& release = ReleaseOn(day, &since);
  const auto number = &release - &profiles_.Rows("releases").front();
  const std::int64_t installed = TimeOf(since, true);
  for (const Json& program : profiles_.Rows("systemPrograms")) {
    const std::string name = program["name"];
    records.push_back(ProgramRecord(name, LaterVersion(program["version"], "minor", number),
                                    program["folder"].get<std::string>() + "/" + name + ".app",
                                    installed));
    Json& record = records.back();
    record["source"] = "apple";
    record["signedBy"] = "Software Signing";
    record["systemComponent"] = record["location"].get<std::string>().rfind("/System", 0) == 0;
  }
  for (const Installation& installation : installations_) AddProgram(records, installation, day);
  // What only this user has, from wherever.
  const std::string folder = "/Users/" + People(0).front().userName + "/Applications/";
  for (int i = 0; i < 3; ++i) {
    Random own = random_.For("own program", i);
    const std::string noun = AnyOf(profiles_.Rows("programs"), own.For("noun"))["name"];
    const std::string maker = AnyOf(profiles_.Rows("makers"), own.For("maker"))["name"];
    const std::string name =
        maker + " " + noun.substr(noun.find(' ') + 1) + " " + std::to_string(i + 1);
    if (day < own.Between(-60, 30)) continue;
    const auto minor = std::to_string(own.Below(30));
    records.push_back(ProgramRecord(name, "0." + minor, folder + name + ".app",
                                    TimeOf(own.Between(-900, -60), true)));
    records.back()["source"] = "unknown";
  }
  return records;
}

}  // namespace Norvik::Forge
