#include "machine/MountText.h"

#include <algorithm>
#include <cstddef>

#include "machine/SystemText.h"

namespace Norvik::Machine {

namespace {

bool IsOctal(char c) { return c >= '0' && c <= '7'; }

/// Blanks and backslashes are escaped as a backslash and three octal digits.
std::string OctalUnescaped(const std::string& text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool escape = text[i] == '\\' && i + 3 < text.size() && IsOctal(text[i + 1]) &&
                        IsOctal(text[i + 2]) && IsOctal(text[i + 3]);
    if (!escape) {
      result += text[i];
      continue;
    }
    const int code = (text[i + 1] - '0') * 64 + (text[i + 2] - '0') * 8 + (text[i + 3] - '0');
    result += static_cast<char>(code);
    i += 3;
  }
  return result;
}

/// File systems whose parts are volumes of their own.
bool HasSubvolumes(const Mount& mount) { return mount.fileSystem == "btrfs"; }

}  // namespace

std::vector<Mount> ParseMountInfo(const std::string& text) {
  std::vector<Mount> mounts;
  for (const auto& line : LinesOf(text)) {
    // id parent device root place options [optional fields...] - type source options
    const auto words = WordsOf(line);
    const auto dash = std::find(words.begin(), words.end(), "-");
    if (dash - words.begin() < 6 || words.end() - dash < 3) continue;
    Mount mount{words[2], OctalUnescaped(words[3]), OctalUnescaped(words[4]), *(dash + 1),
                OctalUnescaped(*(dash + 2))};
    mounts.erase(
        std::remove_if(mounts.begin(), mounts.end(),
                       [&](const Mount& other) { return other.mountPoint == mount.mountPoint; }),
        mounts.end());
    mounts.push_back(std::move(mount));
  }
  return mounts;
}

std::vector<Mount> VolumesOf(const std::vector<Mount>& mounts) {
  std::vector<Mount> volumes;
  for (const auto& mount : mounts) {
    if (mount.root != "/" && !HasSubvolumes(mount)) continue;
    const auto same = std::find_if(volumes.begin(), volumes.end(), [&](const Mount& other) {
      return other.deviceNumber == mount.deviceNumber && other.root == mount.root;
    });
    if (same == volumes.end()) {
      volumes.push_back(mount);
    } else if (mount.mountPoint.size() < same->mountPoint.size()) {
      *same = mount;
    }
  }
  return volumes;
}

std::uint64_t WholeGibibytes(std::uint64_t bytes) {
  constexpr std::uint64_t GIB = std::uint64_t{1} << 30;
  return bytes / GIB * GIB;
}

}  // namespace Norvik::Machine
