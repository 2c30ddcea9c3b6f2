#include "host/recording/Redaction.h"

#include <sodium.h>

#include <algorithm>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/filesystem/fstream.hpp>
#include <boost/filesystem/operations.hpp>
#include <cstdint>
#include <ctime>
#include <functional>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include "host/OutputText.h"
#include "host/recording/EncodedBytes.h"
#include "host/recording/Replacements.h"
#include "host/recording/SensitiveFirmware.h"
#include "host/recording/SensitiveForms.h"
#include "host/recording/SensitiveKeys.h"
#include "host/recording/SensitiveValues.h"

namespace Norvik::Host {

namespace {

namespace fs = boost::filesystem;
using namespace std::string_view_literals;

constexpr std::string_view EDID_HEADER = "\0\xff\xff\xff\xff\xff\xff\0"sv;
constexpr std::size_t EDID_BLOCK = 128;
constexpr std::size_t EDID_SERIAL = 12;
constexpr std::size_t EDID_EXTENSIONS = 126;
/// Bytes inside of bytes: a property list in one that holds a display's block.
constexpr int MAX_DEPTH = 3;

/// Calls `take` with the place of each valid block of a display, extensions included. A block of
/// extensions has another beginning.
void ForEachEdidBlock(const std::string& bytes,
                      const std::function<void(std::size_t at, bool isFirst)>& take) {
  const auto isValid = [&](std::size_t at) {
    unsigned char sum = 0;
    for (std::size_t next = at; next < at + EDID_BLOCK; ++next) {
      sum = static_cast<unsigned char>(sum + static_cast<unsigned char>(bytes[next]));
    }
    return sum == 0;
  };
  for (auto at = bytes.find(EDID_HEADER); at != std::string::npos;
       at = bytes.find(EDID_HEADER, at + 1)) {
    if (at + EDID_BLOCK > bytes.size()) return;
    const auto count = static_cast<unsigned char>(bytes[at + EDID_EXTENSIONS]);
    for (std::size_t block = 0; block <= count; ++block) {
      const std::size_t begin = at + block * EDID_BLOCK;
      if (begin + EDID_BLOCK > bytes.size()) break;
      if (isValid(begin)) take(begin, block == 0);
    }
  }
}

void SetEdidChecksum(std::string& bytes, std::size_t at) {
  unsigned char sum = 0;
  for (std::size_t next = at; next + 1 < at + EDID_BLOCK; ++next) {
    sum = static_cast<unsigned char>(sum + static_cast<unsigned char>(bytes[next]));
  }
  bytes[at + EDID_BLOCK - 1] = static_cast<char>(-sum);
}

std::uint32_t NumberOf(const std::string& bytes) {
  std::uint32_t number = 0;
  for (const char c : bytes) number = number << 8 | static_cast<unsigned char>(c);
  return number;
}

std::string Reversed(std::string bytes) {
  std::reverse(bytes.begin(), bytes.end());
  return bytes;
}

/// What is known of a recording's sensitive values, and their replacement in bytes of any format.
class Redaction {
 public:
  /// Displays come first: their numbers are replaced in a way of their own.
  void AddDisplays(const std::string& bytes, int depth = 0) {
    ForEachEdidBlock(bytes, [&](std::size_t at, bool isFirst) {
      if (!isFirst) return;
      AddDisplay(bytes.substr(at + EDID_SERIAL, 4));
      AddValuesOfDisplay(bytes.substr(at, EDID_BLOCK), replacements);
    });
    if (depth == MAX_DEPTH) return;
    ForEachHexPart(bytes, [&](std::size_t begin, std::size_t length) {
      AddDisplays(FromHex(bytes.substr(begin, length)), depth + 1);
    });
    ForEachDataPart(bytes, [&](std::size_t begin, std::size_t length) {
      AddDisplays(FromBase64(bytes.substr(begin, length)), depth + 1);
    });
  }

  std::string Apply(const std::string& bytes, int depth = 0) const {
    std::string result = replacements.Apply(bytes);
    ForEachEdidBlock(bytes, [&](std::size_t at, bool isFirst) {
      const auto known = displays_.find(bytes.substr(at + EDID_SERIAL, 4));
      if (isFirst && known != displays_.end()) result.replace(at + EDID_SERIAL, 4, known->second);
      SetEdidChecksum(result, at);
    });
    if (depth == MAX_DEPTH) return result;
    ForEachHexPart(bytes, [&](std::size_t begin, std::size_t length) {
      const std::string digits = bytes.substr(begin, length);
      const std::string before = FromHex(digits);
      const std::string after = Apply(before, depth + 1);
      if (after != before) result.replace(begin, length, ToHex(after, digits));
    });
    ForEachDataPart(bytes, [&](std::size_t begin, std::size_t length) {
      const std::string text = bytes.substr(begin, length);
      const std::string before = FromBase64(text);
      // Also without a change: digits that look like a value are not one.
      if (!before.empty()) result.replace(begin, length, ToBase64(Apply(before, depth + 1), text));
    });
    return result;
  }

  Replacements replacements;

 private:
  /// The inventory and the tools write the number in decimal, in either order of the bytes; both
  /// keep the number of their digits.
  void AddDisplay(const std::string& serial) {
    constexpr std::uint32_t LEAST = 1000;
    const std::uint32_t number = NumberOf(serial);
    const std::uint32_t reversed = NumberOf(Reversed(serial));
    if (number < LEAST || displays_.count(serial) != 0) return;
    const std::string digits = std::to_string(number);
    const std::string otherDigits = std::to_string(reversed);
    for (int attempt = 0; attempt < 100'000; ++attempt) {
      std::string bytes = serial;
      for (char& c : bytes) c = c == 0 ? c : static_cast<char>(1 + ::randombytes_uniform(255));
      const std::string to = std::to_string(NumberOf(bytes));
      const std::string otherTo = std::to_string(NumberOf(Reversed(bytes)));
      const bool isSigned = (bytes[0] ^ serial[0]) < 0;
      if (isSigned || to.size() != digits.size() || otherTo.size() != otherDigits.size()) continue;
      replacements.AddNumber(digits, to);
      if (reversed >= LEAST) replacements.AddNumber(otherDigits, otherTo);
      displays_[serial] = bytes;
      return;
    }
  }

  std::map<std::string, std::string> displays_;  ///< bytes of serial numbers
};

std::string ContentOf(const fs::path& file) {
  fs::ifstream stream(file, std::ios::binary);
  if (!stream) throw std::runtime_error("cannot read " + file.string());
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// With the time that it had.
void Rewrite(const fs::path& file, const std::string& content) {
  const std::time_t time = fs::last_write_time(file);
  fs::ofstream stream(file, std::ios::binary);
  if (!stream.write(content.data(), static_cast<std::streamsize>(content.size())).flush()) {
    throw std::runtime_error("cannot write " + file.string());
  }
  stream.close();
  fs::last_write_time(file, time);
}

/// The entries below a folder, each folder before what is in it.
std::vector<fs::path> EntriesBelow(const fs::path& folder) {
  if (!fs::exists(folder)) return {};
  return {fs::recursive_directory_iterator(folder), fs::recursive_directory_iterator()};
}

/// Another place on Earth for each; equal ones stay equal, and (0, 0), which is no position, stays.
void RedactPosition(const fs::path& file) {
  static constexpr struct {
    const char* key;
    std::uint32_t most;  ///< in degrees or metres
  } NUMBERS[] = {{"latitude", 80}, {"longitude", 170}, {"altitude", 500}};
  if (!fs::exists(file)) return;
  OrderedJson location = OrderedJson::parse(ContentOf(file), nullptr, /*allow_exceptions=*/false);
  // A damaged file holds no position that could be read, but digits of it.
  if (!location.is_object() || !location["fixes"].is_array()) location = {{"enabled", false}};
  std::map<std::pair<std::string, double>, double> others;
  for (OrderedJson& fix : location["fixes"]) {
    for (const auto& [key, most] : NUMBERS) {
      if (!fix.is_object() || !fix.value(key, OrderedJson()).is_number()) continue;
      constexpr std::uint32_t STEPS = 1'000'000;
      const auto steps = static_cast<double>(::randombytes_uniform(2 * most * STEPS));
      const double other = (steps - static_cast<double>(most * STEPS)) / STEPS;
      const double value = fix[key];
      if (value != 0.0) fix[key] = others.emplace(std::pair(key, value), other).first->second;
    }
  }
  Rewrite(file, location.dump(1) + "\n");
}

void RedactNames(const fs::path& root, const Redaction& redaction) {
  std::vector<fs::path> entries = EntriesBelow(root);
  std::reverse(entries.begin(), entries.end());
  for (const fs::path& entry : entries) {
    const std::time_t time = fs::last_write_time(entry.parent_path());
    if (fs::is_symlink(entry)) {
      const fs::path target = redaction.Apply(fs::read_symlink(entry).string());
      fs::remove(entry);
      fs::create_symlink(target, entry);
    }
    const std::string name = redaction.Apply(entry.filename().string());
    if (name != entry.filename()) fs::rename(entry, entry.parent_path() / name);
    fs::last_write_time(entry.parent_path(), time);
  }
}

}  // namespace

std::size_t RedactRecording(const fs::path& recording, const std::string& document) {
  std::vector<fs::path> files;
  for (const fs::path& entry : EntriesBelow(recording)) {
    if (fs::is_regular_file(fs::symlink_status(entry)) &&
        entry.parent_path() != recording / "bin") {
      files.push_back(entry);
    }
  }
  std::sort(files.begin(), files.end());
  Redaction redaction;
  for (const fs::path& file : files) {
    const std::string content = ContentOf(file);
    ProtectKeys(file.filename().string(), content, redaction.replacements);
    redaction.AddDisplays(content);
  }
  AddValuesOfDocument(document, redaction.replacements);
  for (const fs::path& file : files) {
    const std::string content = ContentOf(file);
    AddValuesOfFacts(file.filename().string(), content, redaction.replacements);
    AddValuesOfSmbios(content, redaction.replacements);
    AddKeyedValues(content, redaction.replacements);
    // In a binary list the next value begins directly after a text.
    if (!boost::starts_with(content, "bplist")) AddForms(content, redaction.replacements);
  }
  for (const fs::path& entry : EntriesBelow(recording / "root")) {
    AddForms(entry.filename().string(), redaction.replacements);
  }
  for (const fs::path& file : files) Rewrite(file, redaction.Apply(ContentOf(file)));
  RedactPosition(recording / "location.json");
  RedactNames(recording / "root", redaction);
  return redaction.replacements.Count();
}

}  // namespace Norvik::Host
