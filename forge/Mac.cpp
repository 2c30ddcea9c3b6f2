#include "forge/Mac.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>

namespace Norvik::Forge {

namespace {

constexpr double DAY_MILLISECONDS = 86'400'000;

/// How soon the Macs of a fleet are updated: some at once, most in waves, a few hardly ever.
struct Ring {
  double share;
  double days;
};
constexpr Ring RINGS[] = {{0.06, 0.7}, {0.20, 3}, {0.60, 9}, {0.14, 45}};

double DelayOf(Random random) {
  double left = random.Unit();
  for (const Ring& ring : RINGS) {
    left -= ring.share;
    if (left < 0) return ring.days;
  }
  return RINGS[2].days;
}

/// A name in the letters that user names and host names have.
std::string PlainName(const std::string& name) {
  // The letters of U+00C0 to U+00FF without their marks.
  static constexpr char LETTERS[] =
      "aaaaaaaceeeeiiiidnooooo-ouuuuytsaaaaaaaceeeeiiiidnooooo-ouuuuyty";
  std::string plain;
  for (std::size_t i = 0; i < name.size(); ++i) {
    const auto byte = static_cast<unsigned char>(name[i]);
    if (byte == 0xC3 && i + 1 < name.size()) {
      plain += LETTERS[static_cast<unsigned char>(name[++i]) & 0x3F];
    } else if (std::isalnum(byte) && byte < 0x80) {
      plain += static_cast<char>(std::tolower(byte));
    }
  }
  return plain;
}

}  // namespace

Mac::Mac(const Profiles& profiles, std::uint64_t seed, unsigned int number, std::int64_t start)
    : profiles_(profiles),
      random_(Random(seed).For("mac", number)),
      fleet_(Random(seed).For("fleet")),
      number_(number),
      start_(start),
      model_(Drawn(profiles.Rows("models"), random_.For("model"))),
      guid_(Uuid("guid")),
      platformUuid_(Uuid("platform")),
      delay_(DelayOf(random_.For("delay"))) {
  for (char& letter : platformUuid_) letter = static_cast<char>(std::toupper(letter));
  char text[16];
  std::snprintf(text, sizeof(text), "FJ%06X%04X", number,
                static_cast<unsigned int>(random_.For("serial").Bits() & 0xFFFF));
  serial_ = text;
  hostName_ = PersonOf(random_.For("owner", 0)).userName + "-mac-" + std::to_string(number);
  ChoosePrograms();
}

std::string Mac::Token() const {
  Random random = random_.For("token");
  std::string token;
  for (int i = 0; i < 4; ++i) {
    char text[17];
    std::snprintf(text, sizeof(text), "%016llx", static_cast<unsigned long long>(random.Bits()));
    token += text;
  }
  return token;
}

std::string Mac::Uuid(const char* what, int number) const {
  Random random = random_.For("uuid", what, number);
  const std::uint64_t high = random.Bits();
  const std::uint64_t low = random.Bits();
  char text[37];
  std::snprintf(
      text, sizeof(text), "%08x-%04x-4%03x-8%03x-%012llx", static_cast<unsigned int>(high >> 32),
      static_cast<unsigned int>(high >> 16) & 0xFFFF, static_cast<unsigned int>(high) & 0xFFF,
      static_cast<unsigned int>(low >> 48) & 0xFFF,
      static_cast<unsigned long long>(low & 0xFFFF'FFFF'FFFF));
  return text;
}

/// The maker of those processors is invented.
bool Mac::IsIntel() const { return model_["chip"].get<std::string>().rfind("Fjord", 0) == 0; }

/// 0 is Monday.
int Mac::Weekday(int day) const {
  const std::int64_t days = start_ / 86'400 + day;
  return static_cast<int>((days % 7 + 7 + 3) % 7);
}

std::int64_t Mac::TimeOf(double day, bool wholeSeconds) const {
  const auto milliseconds =
      start_ * 1000 + static_cast<std::int64_t>(std::floor(day * DAY_MILLISECONDS));
  return wholeSeconds ? milliseconds / 1000 * 1000 : milliseconds;
}

bool Mac::IsUsed(int day) const {
  if (day == 0) return true;
  if (random_.For("holiday", day / 7).Chance(0.06)) return false;
  const double onWeekend = IsLaptop() ? 0.25 : 0.1;
  return random_.For("used", day).Chance(Weekday(day) < 5 ? 0.94 : onWeekend);
}

Mac::Person Mac::PersonOf(Random random) const {
  const std::string first = AnyOf(profiles_.Rows("firstNames"), random.For("first"));
  const std::string last = AnyOf(profiles_.Rows("lastNames"), random.For("last"));
  return {PlainName(first) + PlainName(last).substr(0, 1), first + " " + last};
}

/// Who has an account: the owner first, and others that come and go.
std::vector<Mac::Person> Mac::People(int day) const {
  constexpr double OWNED = 1500;
  constexpr double SHARED = 150;
  std::vector<Person> people{
      PersonOf(random_.For("owner", PeriodOf(random_.For("owned"), OWNED, day).number))};
  for (int slot = 0; slot < 3; ++slot) {
    const Random guests = random_.For("guests", slot);
    const Random guest = guests.For(PeriodOf(guests, SHARED, day).number);
    if (!guest.For("there").Chance(0.15)) continue;
    const Person person = PersonOf(guest);
    const bool isKnown = std::any_of(people.begin(), people.end(), [&](const Person& other) {
      return other.userName == person.userName;
    });
    if (!isKnown) people.push_back(person);
  }
  return people;
}

Mac::Place Mac::PlaceOn(int day) const {
  constexpr double STAYS = 900;
  const Random sites = random_.For("site");
  const auto siteOf = [&](Random random) { return &Drawn(profiles_.Rows("sites"), random); };
  const Json* const own = siteOf(sites.For(PeriodOf(sites, STAYS, day).number));
  if (!IsLaptop()) return {own, false};
  constexpr int TRIP = 4;  // days
  const Random trip = random_.For("trip", day / TRIP);
  if (trip.For("away").Chance(0.04)) return {siteOf(trip), false};
  const double habit = random_.For("habit").Unit();
  if (habit < 0.4) return {own, Weekday(day) >= 5};
  if (habit > 0.85) return {own, true};
  return {own, Weekday(day) >= 5 || random_.For("home day", Weekday(day)).Chance(0.4)};
}

/// The release of the system: that of a track which came out last and has reached this Mac. Some
/// day the Mac goes over to the newest track.
const Json& Mac::ReleaseOn(int day, double* since) const {
  const Json& releases = profiles_.Rows("releases");
  Random first = random_.For("track");
  const int newest = releases.back()["track"];
  int track = first.Chance(0.25) ? 14 : 15;
  track = std::max(track, model_["firstTrack"].get<int>());
  const double change = first.Exponential(240) - 120;
  const bool hasMoved = day >= change && !IsIntel();
  if (hasMoved) track = newest;
  const Json* current = nullptr;
  double begin = 0;
  for (const Json& release : releases) {
    if (release["track"] != track) continue;
    const double delay =
        random_.For("upgrade", release["version"].get<std::string>()).Exponential(delay_);
    const double reached = release["day"].get<double>() + delay;
    if (current && reached > day) continue;
    current = &release;
    begin = std::min<double>(reached, day);
  }
  if (hasMoved) begin = std::max(begin, change);
  if (since) *since = begin;
  return *current;
}

Json Mac::Device(int day, bool full) const {
  const double time = day + random_.For("time", day).Between(0.3, 0.75);
  if (!full) return {{"assetDate", TimeOf(time + 0.002, false)}, {"guid", guid_}};
  const Place place = PlaceOn(day);
  const std::string domain = (*place.site)["domain"];
  return {{"alias", hostName_},
          {"assetDate", TimeOf(time, false)},
          {"description", ""},
          {"domain", (place.atHome ? "home.test" : domain) + "\n"},
          {"guid", guid_},
          {"name", hostName_},
          {"server", ""},
          {"type", 0},
          {"userName", People(day).front().userName},
          {"workGroup", ""}};
}

Json Mac::Configuration(int day) const {
  const double upgraded = random_.For("agent").Exponential(delay_) + 8;
  return {{"agentVersion", day < upgraded ? "9.23.4.0" : "9.24.2.0"}, {"profileId", 0}};
}

Json Mac::Inventory(int day) const {
  return {{"agentConfiguration", Configuration(day)},
          {"bios", Firmware(day)},
          {"boards", Slots()},
          {"cdrom", nullptr},
          {"device", Device(day, true)},
          {"disk", Disks(day)},
          {"displays", Displays(day)},
          {"drivers", nullptr},
          {"features", nullptr},
          {"group", Groups(day)},
          {"keyboard", Keyboards(day)},
          {"location", Location(day)},
          {"memory", Memory()},
          {"memorySlot", MemorySlots()},
          {"networkAdapter", Adapters(day)},
          {"os", OperatingSystem(day)},
          {"portConnectors", nullptr},
          {"printer", Printers(day)},
          {"processorSlot", Json::array({Processor()})},
          {"service", Services(day)},
          {"setup", Setup()},
          {"sharedResources", Shares(day)},
          {"software", Software(day)},
          {"startupCommand", nullptr},
          {"unitMappings", Mappings(day)},
          {"user", Users(day)},
          {"videoCards", VideoCards(day)}};
}

}  // namespace Norvik::Forge
