#include <map>

#include "forge/Mac.h"

namespace Norvik::Forge {

Json Mac::Files(int day, std::size_t count) const {
  constexpr double OLDEST = 1500;  // days before day 0
  constexpr double CHANGES = 90;   // days between two changes of a file in use
  constexpr double COMES = 3000;
  const std::string home = "/Users/" + People(0).front().userName + "/";
  const Json& folders = profiles_.Rows("folders");
  std::map<std::string, Json> byFolder;
  for (std::size_t i = 0; i < count; ++i) {
    Random file = random_.For("file", i);
    const bool isThere = file.Chance(0.98);
    const double from = isThere ? -file.Unit() * OLDEST : file.Exponential(COMES / 50);
    const double until = std::max(from, 0.0) + file.Exponential(COMES);
    if (day < from || day >= until) continue;
    const Json& kind = Drawn(profiles_.Rows("fileKinds"), file.For("kind"));
    const std::string folder = AnyOf(folders, file.For("folder"));
    const bool isUsed = file.Chance(0.15);
    const Period version = isUsed ? PeriodOf(file, CHANGES, day) : Period{0, from};
    const double changed = version.number == 0 ? from : std::max(from, version.begin);
    Random size = file.For("size", version.number);
    const std::string path = home + folder + (i % 7 == 0 ? "/" + std::to_string(2019 + i % 8) : "");
    byFolder[path].push_back(
        {{"extension", kind["extension"]},
         {"fileStatus", -1},
         {"filename", kind["extension"].get<std::string>() + " " + std::to_string(i + 1)},
         {"lastMod", TimeOf(changed, true)},
         {"size", static_cast<std::int64_t>(kind["size"].get<double>() * size.Exponential(1))}});
  }
  Json paths = Json::array();
  for (auto& [path, files] : byFolder) {
    paths.push_back({{"files", std::move(files)}, {"pathName", path}});
  }
  return {{"device", Device(day, false)}, {"paths", std::move(paths)}, {"typeInventory", 0}};
}

}  // namespace Norvik::Forge
