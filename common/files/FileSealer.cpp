#include "common/files/FileSealer.h"

#include <sodium.h>

#include <array>
#include <cstddef>
#include <utility>
#include <vector>

#include "common/files/SealingKeys.h"
#include "platform/FileSystem.h"
#include "platform/ReplacementFile.h"

namespace Norvik::Common {

namespace {

// A sealed file: its start, the stream key in a sealed box, the header of the stream, the chunks.
// Programs that open such files elsewhere rely on docs/outbox-format.md.
constexpr std::size_t STREAM_KEY = crypto_secretstream_xchacha20poly1305_KEYBYTES;
constexpr std::size_t SEALED_KEY = STREAM_KEY + crypto_box_SEALBYTES;
constexpr std::size_t STREAM_HEADER = crypto_secretstream_xchacha20poly1305_HEADERBYTES;
constexpr std::size_t CHUNK = 65536;
constexpr std::size_t CHUNK_EXTRA = crypto_secretstream_xchacha20poly1305_ABYTES;
constexpr unsigned char MESSAGE_TAG = crypto_secretstream_xchacha20poly1305_TAG_MESSAGE;
constexpr unsigned char FINAL_TAG = crypto_secretstream_xchacha20poly1305_TAG_FINAL;

using Bytes = std::vector<unsigned char>;
using SealedKey = std::array<unsigned char, SEALED_KEY>;

struct Stream {
  Stream() = default;
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;
  ~Stream() { sodium_memzero(&state, sizeof(state)); }
  crypto_secretstream_xchacha20poly1305_state state{};
  Bytes additional;  ///< data of every chunk
};

struct StreamKey {
  StreamKey() = default;
  StreamKey(const StreamKey&) = delete;
  StreamKey& operator=(const StreamKey&) = delete;
  ~StreamKey() { sodium_memzero(bytes, sizeof(bytes)); }
  unsigned char bytes[STREAM_KEY] = {};
};

[[noreturn]] void ThrowDamaged() { throw SealedFileError("The file was cut or altered"); }

/// Reads a file in pieces, one ahead, so that it knows which piece is the last.
class PieceReader {
 public:
  PieceReader(const Platform::FileDescriptor& file, std::size_t size)
      : file_(file), current_(size), next_(size) {
    Fill(next_, size);
  }

  /// The next piece: of full size unless it is the last; empty only in an empty file.
  const Bytes& Next() {
    const std::size_t size = current_.capacity();
    std::swap(current_, next_);
    Fill(next_, size);
    return current_;
  }
  bool AtEnd() const { return next_.empty(); }

 private:
  void Fill(Bytes& piece, std::size_t size) {
    piece.resize(size);
    piece.resize(Platform::ReadFull(file_, reinterpret_cast<char*>(piece.data()), size));
  }

  const Platform::FileDescriptor& file_;
  Bytes current_;
  Bytes next_;
};

template <class Container>
void Write(const Platform::FileDescriptor& file, const Container& bytes, std::size_t size) {
  Platform::WriteAll(file, reinterpret_cast<const char*>(bytes.data()), size);
}

/// Fills the array from the file. False if the file is too short.
template <class Array>
bool Read(const Platform::FileDescriptor& file, Array& bytes) {
  return Platform::ReadFull(file, reinterpret_cast<char*>(bytes.data()), bytes.size()) ==
         bytes.size();
}

void WriteStart(const Platform::FileDescriptor& file, const PublicKey& recipient, Stream& stream) {
  StreamKey key;
  crypto_secretstream_xchacha20poly1305_keygen(key.bytes);
  SealedKey sealedKey;
  if (crypto_box_seal(sealedKey.data(), key.bytes, sizeof(key.bytes), recipient.data()) != 0) {
    throw std::runtime_error("The public key is not usable");
  }
  std::array<unsigned char, STREAM_HEADER> header;
  crypto_secretstream_xchacha20poly1305_init_push(&stream.state, header.data(), key.bytes);
  stream.additional = StartFor(recipient).bytes;
  Write(file, stream.additional, stream.additional.size());
  Write(file, sealedKey, sealedKey.size());
  Write(file, header, header.size());
}

/// Appends chunks to a file whose start is written.
class ChunkWriter {
 public:
  ChunkWriter(const Platform::FileDescriptor& file, Stream& stream)
      : file_(file), stream_(stream) {}

  void Write(const unsigned char* piece, std::size_t size, unsigned char tag) {
    crypto_secretstream_xchacha20poly1305_push(&stream_.state, sealed_.data(), nullptr, piece, size,
                                               stream_.additional.data(), stream_.additional.size(),
                                               tag);
    Common::Write(file_, sealed_, size + CHUNK_EXTRA);
  }

 private:
  const Platform::FileDescriptor& file_;
  Stream& stream_;
  Bytes sealed_ = Bytes(CHUNK + CHUNK_EXTRA);
};

void WriteChunks(const Platform::FileDescriptor& from, ChunkWriter writer) {
  PieceReader pieces(from, CHUNK);
  unsigned char tag = MESSAGE_TAG;
  do {
    const Bytes& piece = pieces.Next();
    tag = pieces.AtEnd() ? FINAL_TAG : MESSAGE_TAG;
    writer.Write(piece.data(), piece.size(), tag);
  } while (tag != FINAL_TAG);
}

[[noreturn]] void ThrowWrongKey(const SealedStart& start, const OpeningKeys& keys) {
  const std::string reason =
      start.NamesKey() ? "The file is sealed to the key " + FingerprintOf(start.key)
                       : std::string("The file was altered, or it is sealed to another key");
  throw WrongKeyError(reason + "; " + keys.Tried());
}

/// Opens the box with the stream key, and returns the key that did it.
const OpeningKey& OpenBox(const SealedStart& start, const SealedKey& box, const OpeningKeys& keys,
                          StreamKey& streamKey) {
  for (const OpeningKey& key : keys.Keys()) {
    if (start.NamesKey() && key.identifier != start.key) continue;
    if (crypto_box_seal_open(streamKey.bytes, box.data(), box.size(), key.publicKey.data(),
                             key.privateKey.bytes.data()) == 0) {
      return key;
    }
    if (start.NamesKey()) ThrowDamaged();
  }
  ThrowWrongKey(start, keys);
}

const OpeningKey& ReadStart(const Platform::FileDescriptor& file, const OpeningKeys& keys,
                            Stream& stream) {
  SealedStart start = ReadSealedStart(file);
  SealedKey sealedKey;
  std::array<unsigned char, STREAM_HEADER> header;
  if (!Read(file, sealedKey) || !Read(file, header)) ThrowDamaged();
  StreamKey key;
  const OpeningKey& used = OpenBox(start, sealedKey, keys, key);
  if (crypto_secretstream_xchacha20poly1305_init_pull(&stream.state, header.data(), key.bytes) !=
      0) {
    ThrowDamaged();
  }
  stream.additional = std::move(start.bytes);
  return used;
}

/// @param take gets each piece: its bytes, their number and the tag
template <class Take>
void ReadChunks(const Platform::FileDescriptor& from, Stream& stream, Take take) {
  PieceReader pieces(from, CHUNK + CHUNK_EXTRA);
  Bytes opened(CHUNK);
  unsigned char tag = MESSAGE_TAG;
  do {
    const Bytes& piece = pieces.Next();
    if (piece.size() < CHUNK_EXTRA ||
        crypto_secretstream_xchacha20poly1305_pull(
            &stream.state, opened.data(), nullptr, &tag, piece.data(), piece.size(),
            stream.additional.data(), stream.additional.size()) != 0) {
      ThrowDamaged();
    }
    // Only the last chunk has the final tag.
    if (tag != (pieces.AtEnd() ? FINAL_TAG : MESSAGE_TAG)) ThrowDamaged();
    take(opened, piece.size() - CHUNK_EXTRA, tag);
  } while (tag != FINAL_TAG);
}

}  // namespace

WrongKeyError::~WrongKeyError() = default;

FileSealer::FileSealer(boost::filesystem::path keyFolder) : keyFolder_(std::move(keyFolder)) {}

void FileSealer::Seal(const boost::filesystem::path& source,
                      const boost::filesystem::path& target) const {
  const PublicKey recipient = SealingKeys(keyFolder_).ForSealing();
  const Platform::FileDescriptor from = Platform::OpenRegularFile(source.string());
  Platform::ReplacementFile to(target.string());
  Stream stream;
  WriteStart(to.Descriptor(), recipient, stream);
  WriteChunks(from, ChunkWriter(to.Descriptor(), stream));
  to.Commit();
}

void FileSealer::Open(const boost::filesystem::path& source,
                      const boost::filesystem::path& target) const {
  OpenSealedFile(source, target, OpeningKeys({keyFolder_}));
}

bool FileSealer::IsSealedToOwnKey(const boost::filesystem::path& file) const {
  const SealedStart start = SealedStartOf(file);
  const OpeningKeys own({SealingKeys(keyFolder_).OwnPrivateKey()});
  if (start.NamesKey()) return !own.Keys().empty() && own.Keys().front().identifier == start.key;
  try {
    KeyOfSealedFile(file, own);
    return true;
  } catch (const SealedFileError&) {
    return false;
  }
}

void FileSealer::SealAgain(const boost::filesystem::path& file) const {
  const PublicKey recipient = SealingKeys(keyFolder_).ForSealing();
  const Platform::FileDescriptor from = Platform::OpenRegularFile(file.string());
  Stream old;
  ReadStart(from, OpeningKeys({keyFolder_}), old);
  Platform::ReplacementFile to(file.string());
  Stream stream;
  WriteStart(to.Descriptor(), recipient, stream);
  ChunkWriter writer(to.Descriptor(), stream);
  ReadChunks(from, old, [&](const Bytes& piece, std::size_t size, unsigned char tag) {
    writer.Write(piece.data(), size, tag);
  });
  to.Commit();
}

void OpenSealedFile(const boost::filesystem::path& source, const boost::filesystem::path& target,
                    const OpeningKeys& keys) {
  const Platform::FileDescriptor from = Platform::OpenRegularFile(source.string());
  Stream stream;
  ReadStart(from, keys, stream);
  Platform::ReplacementFile to(target.string());
  ReadChunks(from, stream, [&](const Bytes& piece, std::size_t size, unsigned char /*tag*/) {
    Write(to.Descriptor(), piece, size);
  });
  to.Commit();
}

const OpeningKey& KeyOfSealedFile(const boost::filesystem::path& file, const OpeningKeys& keys) {
  Stream stream;
  return ReadStart(Platform::OpenRegularFile(file.string()), keys, stream);
}

}  // namespace Norvik::Common
