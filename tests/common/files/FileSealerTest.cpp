#include "common/files/FileSealer.h"

#include <sodium.h>

#include "support/Test.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Tests;

// Where the parts of a sealed file begin, as docs/outbox-format.md has them.
constexpr std::size_t MARK = 9;
constexpr std::size_t SEALED_KEY_END = MARK + 80;
constexpr std::size_t CHUNKS = SEALED_KEY_END + 24;
constexpr std::size_t FULL_CHUNK = 65536 + 17;

std::string Pattern(std::size_t size) {
  std::string text(size, '\0');
  for (std::size_t i = 0; i < size; ++i) text[i] = static_cast<char>(i * 31 + i / 251);
  return text;
}

class FileSealerTest : public testing::Test {
 protected:
  std::string Seal(const std::string& content) {
    WriteFile(folder_ / "plain", content);
    sealer_.Seal(folder_ / "plain", folder_ / "sealed");
    return ContentOf(folder_ / "sealed");
  }
  /// Whether a file of these bytes opens. If not, what was there before must be left.
  bool Opens(const std::string& sealed) {
    WriteFile(altered_, sealed);
    WriteFile(opened_, "earlier");
    const auto files = FilesBelow(folder_.Path());
    try {
      sealer_.Open(altered_, opened_);
      return true;
    } catch (const SealedFileError&) {
      EXPECT_EQ(ContentOf(opened_), "earlier");
      EXPECT_EQ(FilesBelow(folder_.Path()), files);
      return false;
    }
  }

  TemporaryFolder folder_;
  const fs::path altered_ = folder_ / "altered";
  const fs::path opened_ = folder_ / "opened";
  FileSealer sealer_{folder_ / "keys"};
};

TEST_F(FileSealerTest, OpensWhatItSealedWhateverTheSizeAndInPlace) {
  for (const std::size_t size : {0u, 1u, 65535u, 65536u, 65537u, 131072u, 307200u}) {
    const std::string content = Pattern(size);
    const std::size_t chunks = size == 0 ? 1 : (size + 65535) / 65536;
    EXPECT_EQ(Seal(content).size(), CHUNKS + size + 17 * chunks);
    sealer_.Open(folder_ / "sealed", opened_);
    EXPECT_TRUE(ContentOf(opened_) == content) << size;
    sealer_.Seal(opened_, opened_);
    EXPECT_FALSE(ContentOf(opened_) == content) << size;
    sealer_.Open(opened_, opened_);
    EXPECT_TRUE(ContentOf(opened_) == content) << size;
  }
}

TEST_F(FileSealerTest, OpensNoFileThatWasCutOrAlteredAnywhere) {
  const std::string sealed = Seal("a short document");
  EXPECT_NE(sealed, Seal("a short document"));
  EXPECT_TRUE(Opens(sealed));
  for (std::size_t at = 0; at < sealed.size(); ++at) {
    EXPECT_FALSE(Opens(sealed.substr(0, at))) << at;
    for (const char bit : {'\x01', '\x80'}) {
      std::string altered = sealed;
      altered[at] = static_cast<char>(altered[at] ^ bit);
      EXPECT_FALSE(Opens(altered)) << at;
    }
  }
}

TEST_F(FileSealerTest, OpensNoFileWhoseChunksWereCutOrMoved) {
  const std::string sealed = Seal(Pattern(3 * 65536));
  std::map<char, std::string> parts = {{'s', sealed.substr(0, CHUNKS)},
                                       {'1', sealed.substr(CHUNKS, FULL_CHUNK)},
                                       {'2', sealed.substr(CHUNKS + FULL_CHUNK, FULL_CHUNK)},
                                       {'3', sealed.substr(CHUNKS + 2 * FULL_CHUNK)},
                                       {'x', "x"},
                                       {'0', std::string(FULL_CHUNK, '\0')}};
  parts['h'] = parts['2'].substr(17);
  for (const std::string order : {"s123", "s213", "s13", "s11", "s1233", "s123x", "s123s", "s1230",
                                  "s3", "s", "s1", "sx", "s12", "s12x", "sh", "s1h", "s12h"}) {
    std::string text;
    for (const char part : order) text += parts[part];
    EXPECT_EQ(Opens(text), order == "s123") << order;
  }
}

TEST_F(FileSealerTest, MakesItsPairOnceAndKeepsThePrivateHalfPrivate) {
  Seal("text");
  const std::string key = ContentOf(folder_ / "keys" / "agent.key");
  EXPECT_EQ(ModeOf(folder_ / "keys" / "agent.key"), 0600u);
  EXPECT_EQ(ModeOf(folder_ / "keys"), 0700u);

  // The public half comes back from the private one; a new pair would lose what is sealed.
  fs::remove(folder_ / "keys" / "agent.pub");
  EXPECT_TRUE(Opens(Seal("text")));
  EXPECT_EQ(ContentOf(folder_ / "keys" / "agent.key"), key);
}

TEST_F(FileSealerTest, PrefersTheServersKeyAndThenCannotOpenTheFileItself) {
  Seal("text");
  unsigned char publicKey[32], privateKey[32];
  crypto_box_keypair(publicKey, privateKey);
  char hex[65];
  WriteFile(folder_ / "keys" / "server.pub", sodium_bin2hex(hex, sizeof(hex), publicKey, 32));
  EXPECT_FALSE(Opens(Seal("text")));
}

TEST_F(FileSealerTest, RefusesAKeyThatIsNone) {
  WriteFile(folder_ / "plain", "text");
  fs::create_directory(folder_ / "keys");
  const std::string zeros(64, '0');
  for (const auto& text : {std::string(), std::string("zz"), zeros.substr(2), zeros + "00", zeros,
                           std::string(4096, 'a')}) {
    WriteFile(folder_ / "keys" / "server.pub", text);
    EXPECT_THROW(sealer_.Seal(folder_ / "plain", folder_ / "sealed"), std::runtime_error) << text;
    EXPECT_FALSE(fs::exists(folder_ / "sealed"));
  }
}

TEST_F(FileSealerTest, AMissingKeyIsNoDamagedFile) {
  WriteFile(altered_, Seal("text"));
  const FileSealer keyless(folder_ / "elsewhere");
  EXPECT_THAT([&] { keyless.Open(altered_, opened_); },
              ThrowsMessage<std::runtime_error>(HasSubstr("agent.key: No such file")));
  EXPECT_FALSE(fs::exists(folder_ / "elsewhere"));
  EXPECT_THROW(sealer_.Open(folder_ / "missing", opened_), std::runtime_error);
  EXPECT_FALSE(fs::exists(opened_));
}

TEST_F(FileSealerTest, FollowsTheDocumentedFormat) {
  // By hand, step by step as docs/outbox-format.md says, for a document of two chunks.
  const std::string document = Pattern(65536 + 5);
  const std::string file = Seal(document);
  const auto* bytes = reinterpret_cast<const unsigned char*>(file.data());
  EXPECT_EQ(file.substr(0, MARK), std::string("NRVKSEAL\x01"));

  unsigned char privateKey[32], publicKey[32], streamKey[32];
  const std::string line = ContentOf(folder_ / "keys" / "agent.key");
  ASSERT_EQ(line.size(), 65u);
  ASSERT_EQ(sodium_hex2bin(privateKey, 32, line.data(), 64, nullptr, nullptr, nullptr), 0);
  crypto_scalarmult_base(publicKey, privateKey);
  ASSERT_EQ(crypto_box_seal_open(streamKey, bytes + MARK, 80, publicKey, privateKey), 0);

  crypto_secretstream_xchacha20poly1305_state state;
  crypto_secretstream_xchacha20poly1305_init_pull(&state, bytes + SEALED_KEY_END, streamKey);
  std::string opened;
  for (const auto& [at, size, wanted] :
       {std::tuple(CHUNKS, 65536u, 0), {CHUNKS + FULL_CHUNK, 5u, 3}}) {
    std::vector<unsigned char> chunk(size);
    unsigned char tag = 255;
    ASSERT_EQ(crypto_secretstream_xchacha20poly1305_pull(&state, chunk.data(), nullptr, &tag,
                                                         bytes + at, size + 17, bytes, MARK),
              0);
    EXPECT_EQ(tag, wanted);
    opened.append(chunk.begin(), chunk.end());
  }
  EXPECT_TRUE(opened == document);
}

}  // namespace
