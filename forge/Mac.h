#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "forge/Profiles.h"

namespace Norvik::Forge {

/// A Mac that does not exist, as its inventories see it on any day. What it is on a day depends on
/// the seed, its number and the day only: neither on other Macs nor on days that were asked before.
class Mac {
 public:
  /// @param profiles  used as long as this object is
  /// @param start     day 0, in seconds since the epoch; a midnight in UTC
  Mac(const Profiles& profiles, std::uint64_t seed, unsigned int number, std::int64_t start);

  unsigned int Number() const { return number_; }
  const std::string& Guid() const { return guid_; }
  const std::string& HostName() const { return hostName_; }
  const std::string& SerialNumber() const { return serial_; }
  const std::string& PlatformUuid() const { return platformUuid_; }
  std::string Model() const { return model_["identifier"]; }
  /// What only the agent of this Mac knows, in hexadecimal digits.
  std::string Token() const;

  /// Whether the Mac is on at all that day; it is on day 0.
  bool IsUsed(int day) const;
  /// The full document of the machine on a day.
  Json Inventory(int day) const;
  /// The total document of so many files. They are created, changed and deleted over the days, so
  /// it holds a few more or less.
  Json Files(int day, std::size_t count) const;

 private:
  /// Somebody who uses the Mac.
  struct Person {
    std::string userName;
    std::string fullName;
  };
  /// A program of this Mac from a day until another.
  struct Installation {
    const Program* program;
    double from;
    double until;
    double phase;  ///< of the releases, in days
  };
  /// Where the Mac is that day.
  struct Place {
    const Json* site;
    bool atHome;
  };

  bool IsLaptop() const { return model_["kind"] == "laptop"; }
  bool IsIntel() const;
  std::string Uuid(const char* what, int number = 0) const;
  int Weekday(int day) const;
  /// In milliseconds since the epoch; the fraction of the day is the time of day.
  std::int64_t TimeOf(double day, bool wholeSeconds) const;

  Person PersonOf(Random random) const;
  std::vector<Person> People(int day) const;
  Place PlaceOn(int day) const;
  const Json& ReleaseOn(int day, double* since = nullptr) const;
  void ChoosePrograms();

  // Sections of the document.
  Json Device(int day, bool full) const;
  Json Configuration(int day) const;
  Json OperatingSystem(int day) const;
  Json Software(int day) const;
  Json Services(int day) const;
  Json Adapters(int day) const;
  Json Location(int day) const;
  Json Printers(int day) const;
  Json Users(int day) const;
  Json Groups(int day) const;
  Json Mappings(int day) const;
  Json Shares(int day) const;
  Json Processor() const;
  Json Memory() const;
  Json MemorySlots() const;
  Json Setup() const;
  Json Firmware(int day) const;
  Json VideoCards(int day) const;
  Json Disks(int day) const;
  Json Displays(int day) const;
  Json Keyboards(int day) const;
  Json Slots() const;

  /// Adds the record of a program, or none if it has not come yet or has gone.
  void AddProgram(Json& records, const Installation& installation, int day) const;
  Json ExternalDisplay(int slot, int day) const;

  const Profiles& profiles_;
  Random random_;  ///< of this Mac
  Random fleet_;   ///< of all Macs of the seed
  unsigned int number_;
  std::int64_t start_;
  const Json& model_;
  std::string guid_;
  std::string hostName_;
  std::string serial_;
  std::string platformUuid_;
  double delay_;  ///< how many days after a release this Mac gets it, on average
  std::vector<Installation> installations_;
};

/// A list as documents have it: null in place of an empty one.
inline Json NullIfEmpty(Json list) { return list.empty() ? Json() : std::move(list); }

}  // namespace Norvik::Forge
