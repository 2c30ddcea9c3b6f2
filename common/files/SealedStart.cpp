#include "common/files/SealedStart.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <fstream>

#include "platform/FileSystem.h"

namespace Norvik::Common {

namespace {

// Programs that open such files elsewhere rely on docs/outbox-format.md.
constexpr std::array<unsigned char, 8> MARK = {'N', 'R', 'V', 'K', 'S', 'E', 'A', 'L'};
constexpr unsigned int WITHOUT_KEY = 1;
constexpr unsigned int WITH_KEY = 2;

template <class Bytes>
bool Read(const Platform::FileDescriptor& file, Bytes& bytes, std::size_t size) {
  return Platform::ReadFull(file, reinterpret_cast<char*>(bytes.data()), size) == size;
}

}  // namespace

SealedFileError::~SealedFileError() = default;

SealedStart StartFor(const PublicKey& recipient) {
  SealedStart start;
  start.version = WITH_KEY;
  start.key = IdentifierOf(recipient);
  start.bytes.assign(MARK.begin(), MARK.end());
  start.bytes.push_back(WITH_KEY);
  start.bytes.insert(start.bytes.end(), start.key.begin(), start.key.end());
  return start;
}

SealedStart ReadSealedStart(const Platform::FileDescriptor& file) {
  std::array<unsigned char, MARK.size()> mark;
  if (!Read(file, mark, mark.size()) || mark != MARK) {
    throw SealedFileError("The file is no sealed file");
  }
  const char* const cut = "The file was cut or altered";
  std::array<unsigned char, 1> version;
  if (!Read(file, version, 1)) throw SealedFileError(cut);
  SealedStart start;
  start.version = version[0];
  if (start.version != WITHOUT_KEY && start.version != WITH_KEY) {
    throw SealedFileError("The file has version " + std::to_string(start.version) +
                          " of the format of sealed files; known are 1 and 2");
  }
  start.bytes.assign(MARK.begin(), MARK.end());
  start.bytes.push_back(version[0]);
  if (!start.NamesKey()) return start;
  if (!Read(file, start.key, start.key.size())) throw SealedFileError(cut);
  start.bytes.insert(start.bytes.end(), start.key.begin(), start.key.end());
  return start;
}

SealedStart SealedStartOf(const boost::filesystem::path& file) {
  return ReadSealedStart(Platform::OpenRegularFile(file.string()));
}

bool IsSealedFile(const boost::filesystem::path& file) {
  std::ifstream stream(file.string(), std::ios::binary);
  std::array<char, MARK.size()> start{};
  stream.read(start.data(), start.size());
  return stream && std::equal(start.begin(), start.end(), MARK.begin());
}

}  // namespace Norvik::Common
