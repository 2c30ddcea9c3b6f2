#include "host/server/OutboxFiles.h"

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <boost/format.hpp>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <utility>

#include "common/log/Logger.h"

namespace Norvik::Host {

namespace {

namespace fs = boost::filesystem;

constexpr std::size_t DIGITS = 16;
constexpr char SEPARATOR = '~';

bool HasNumber(const std::string& name) {
  return name.size() > DIGITS + 1 && name[DIGITS] == SEPARATOR &&
         std::all_of(name.begin(), name.begin() + DIGITS,
                     [](char c) { return c >= '0' && c <= '9'; });
}

std::uint64_t NumberOf(const std::string& name) { return std::stoull(name.substr(0, DIGITS)); }

std::string NumberedName(std::uint64_t number, const std::string& name) {
  const std::string digits = std::to_string(number);
  return std::string(DIGITS - std::min(DIGITS, digits.size()), '0') + digits + SEPARATOR + name;
}

/// Names of the regular files with one of the extensions, sorted.
std::vector<std::string> NamesIn(const fs::path& folder,
                                 const std::vector<std::string>& extensions) {
  std::vector<std::string> names;
  if (!fs::exists(folder)) return names;
  for (const auto& entry : fs::directory_iterator(folder)) {
    const auto extension = entry.path().extension().string();
    const bool wanted =
        std::find(extensions.begin(), extensions.end(), extension) != extensions.end();
    if (wanted && entry.symlink_status().type() == fs::regular_file) {
      names.push_back(entry.path().filename().string());
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

void LogFailure(const fs::filesystem_error& error) {
  NORVIK_ERROR(boost::format("The outbox cannot be read: %1%") % error.what());
}

}  // namespace

OutboxFiles::OutboxFiles(fs::path folder, std::vector<std::string> extensions,
                         std::shared_ptr<const Clock> clock)
    : folder_(std::move(folder)), extensions_(std::move(extensions)), clock_(std::move(clock)) {}

/// The time in microseconds, but always more than the previous number: the clock may be set back.
std::uint64_t OutboxFiles::NextNumber() {
  const auto now = clock_->Now().time_since_epoch();
  const auto time = std::chrono::duration_cast<std::chrono::microseconds>(now).count();
  lastNumber_ =
      std::max(lastNumber_ + 1, static_cast<std::uint64_t>(std::max<std::int64_t>(time, 0)));
  return lastNumber_;
}

void OutboxFiles::NumberNewFiles() {
  const std::lock_guard<std::mutex> lock(mutex_);
  try {
    std::vector<std::pair<std::time_t, std::string>> unnumbered;
    for (const std::string& name : NamesIn(folder_, extensions_)) {
      if (HasNumber(name)) {
        lastNumber_ = std::max(lastNumber_, NumberOf(name));
      } else {
        unnumbered.emplace_back(fs::last_write_time(folder_ / name), name);
      }
    }
    std::sort(unnumbered.begin(), unnumbered.end());
    for (const auto& [time, name] : unnumbered) {
      fs::rename(folder_ / name, folder_ / NumberedName(NextNumber(), name));
    }
  } catch (const fs::filesystem_error& error) {
    LogFailure(error);
  }
}

std::vector<OutboxFile> OutboxFiles::List() const {
  std::vector<OutboxFile> files;
  try {
    for (const std::string& name : NamesIn(folder_, extensions_)) {
      if (!HasNumber(name)) continue;
      const fs::path path = folder_ / name;
      files.push_back({path, name.substr(DIGITS + 1), path.extension().string()});
    }
  } catch (const fs::filesystem_error& error) {
    LogFailure(error);
    files.clear();
  }
  return files;
}

}  // namespace Norvik::Host
