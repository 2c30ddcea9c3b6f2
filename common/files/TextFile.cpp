#include "common/files/TextFile.h"

#include <fcntl.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

#include "platform/FileSystem.h"
#include "platform/ReplacementFile.h"

namespace Norvik::Common {

namespace {

constexpr std::size_t TEXT_PIECE = 65536;

}  // namespace

std::string ReadTextFile(const boost::filesystem::path& file, std::size_t limit) {
  const std::string& name = file.string();
  // Not only regular files: a user may name a link or a pipe.
  const Platform::FileDescriptor descriptor(::open(name.c_str(), O_RDONLY | O_CLOEXEC));
  if (!descriptor.IsOpen()) throw std::runtime_error(name + ": " + std::strerror(errno));
  std::string text;
  try {
    // In pieces, since most files are far smaller than the limit.
    std::size_t had = 0;
    do {
      had = text.size();
      text.resize(had + TEXT_PIECE);
      text.resize(had + Platform::ReadFull(descriptor, &text[had], TEXT_PIECE));
    } while (text.size() > had && text.size() <= limit);
  } catch (const std::exception& error) {
    throw std::runtime_error(name + ": " + error.what());
  }
  if (text.size() > limit) {
    throw std::runtime_error(name + ": it is larger than " + std::to_string(limit) + " bytes");
  }
  return text;
}

void WriteTextFile(const boost::filesystem::path& file, const std::string& text) {
  try {
    Platform::ReplacementFile target(file.string());
    Platform::WriteAll(target.Descriptor(), text.data(), text.size());
    target.Commit();
  } catch (const std::exception& error) {
    throw std::runtime_error("cannot write " + file.string() + ": " + error.what());
  }
}

}  // namespace Norvik::Common
