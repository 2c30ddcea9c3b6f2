#include "common/files/FilesCounts.h"

#include <string.h>

#include <algorithm>
#include <fstream>
#include <string>

namespace Norvik::Common {

namespace {

constexpr std::size_t PIECE_BYTES = 1 << 20;
// Cannot occur inside a JSON string, where a backslash comes before each quote.
constexpr char STATUS_KEY[] = "\"fileStatus\":";
constexpr std::size_t KEY_BYTES = sizeof(STATUS_KEY) - 1;

void CountOne(char status, FilesCounts& counts) {
  if (status == '-') ++counts.total;
  if (status == '1') ++counts.added;
  if (status == '2') ++counts.modified;
  if (status == '3') ++counts.removed;
}

/// Returns the start of the rest, which the next piece may complete.
std::size_t CountIn(const std::string& text, FilesCounts& counts) {
  const char* const end = text.data() + text.size();
  const char* from = text.data();
  while (const void* const found =
             ::memmem(from, static_cast<std::size_t>(end - from), STATUS_KEY, KEY_BYTES)) {
    const char* const status = static_cast<const char*>(found) + KEY_BYTES;
    if (status == end) return text.size() - KEY_BYTES;
    CountOne(*status, counts);
    from = status;
  }
  const auto left = static_cast<std::size_t>(end - from);
  return text.size() - std::min(left, KEY_BYTES - 1);
}

}  // namespace

FilesCounts CountFiles(const boost::filesystem::path& document) {
  FilesCounts counts;
  std::ifstream stream(document.string(), std::ios::binary);
  std::string text;
  while (stream) {
    const std::size_t kept = text.size();
    text.resize(kept + PIECE_BYTES);
    stream.read(text.data() + kept, PIECE_BYTES);
    text.resize(kept + static_cast<std::size_t>(stream.gcount()));
    text.erase(0, CountIn(text, counts));
  }
  return counts;
}

}  // namespace Norvik::Common
