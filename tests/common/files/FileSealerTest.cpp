#include "common/files/FileSealer.h"

#include <sodium.h>

#include <cstring>
#include <numeric>

#include "common/files/SealingKeys.h"
#include "support/Test.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Tests;

// Where the parts of a sealed file begin, as docs/outbox-format.md has them.
constexpr std::size_t VERSION = 8;
constexpr std::size_t START = 25;
constexpr std::size_t SEALED_KEY_END = START + 80;
constexpr std::size_t CHUNKS = SEALED_KEY_END + 24;
constexpr std::size_t FULL_CHUNK = 65536 + 17;

/// A file of version 1 with one chunk, made by hand.
std::string SealedAs1(const PublicKey& key, const std::string& content) {
  const std::string start = "NRVKSEAL\x01";
  std::string file = start + std::string(80 + 24 + content.size() + 17, '\0');
  auto* const bytes = reinterpret_cast<unsigned char*>(file.data());
  const auto* const text = reinterpret_cast<const unsigned char*>(content.data());
  unsigned char streamKey[32];
  crypto_secretstream_xchacha20poly1305_keygen(streamKey);
  crypto_box_seal(bytes + 9, streamKey, 32, key.data());
  crypto_secretstream_xchacha20poly1305_state state;
  crypto_secretstream_xchacha20poly1305_init_push(&state, bytes + 89, streamKey);
  crypto_secretstream_xchacha20poly1305_push(&state, bytes + 113, nullptr, text, content.size(),
                                             bytes, 9, 3);
  return file;
}

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
  PublicKey OwnKey() const { return SealingKeys(folder_ / "keys").ForSealing(); }
  /// Makes a pair in the folder of keys.
  PublicKey MakePair(const std::string& name) const {
    PrivateKey key;
    MakePrivateKey(key);
    WriteKeyFile(folder_ / "keys" / (name + ".key"), key.bytes);
    WriteKeyFile(folder_ / "keys" / (name + ".pub"), PublicHalf(key));
    return PublicHalf(key);
  }
  /// Why a file of these bytes does not open.
  std::string ReasonFor(const std::string& sealed) const {
    WriteFile(altered_, sealed);
    return MessageOf<std::runtime_error>([&] { sealer_.Open(altered_, opened_); });
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

TEST_F(FileSealerTest, OpensNoFileOfAnyVersionThatWasCutOrAlteredAnywhere) {
  const std::string second = Seal("a short document");
  EXPECT_NE(second, Seal("a short document"));
  const std::string first = SealedAs1(OwnKey(), "a short document");
  for (const auto& [sealed, step] : {std::pair(second, 1u), {first, 5u}}) {
    EXPECT_TRUE(Opens(sealed));
    EXPECT_EQ(ContentOf(opened_), "a short document");
    for (std::size_t at = 0; at < sealed.size(); at += step) {
      EXPECT_FALSE(Opens(sealed.substr(0, at))) << at;
      for (const char bit : {'\x03', '\x80'}) {
        std::string altered = sealed;
        altered[at] = static_cast<char>(altered[at] ^ bit);
        EXPECT_FALSE(Opens(altered)) << at;
      }
    }
  }
}

TEST_F(FileSealerTest, SaysWhichKeyAFileNeedsAndWhichWereTried) {
  const std::string sealed = Seal("text");
  const std::string first = SealedAs1(OwnKey(), "text");
  const std::string own = FingerprintOf(IdentifierOf(OwnKey()));
  const KeyIdentifier other = IdentifierOf(MakePair("server"));
  const auto file = [&](const char* name) { return (folder_ / "keys" / name).string(); };
  for (const char version : {'\x00', '\x03', '\x7f'}) {
    std::string altered = sealed;
    altered[VERSION] = version;
    EXPECT_EQ(ReasonFor(altered), "The file has version " + std::to_string(+version) +
                                      " of the format of sealed files; known are 1 and 2");
  }
  // A key at hand that is not the one of the box.
  std::string exchanged = sealed;
  std::copy(other.begin(), other.end(), exchanged.begin() + VERSION + 1);
  EXPECT_EQ(ReasonFor(exchanged), "The file was cut or altered");

  EXPECT_TRUE(Opens(Seal("text")) && Opens(sealed));
  fs::rename(file("agent.key"), file("server-former.key"));
  EXPECT_TRUE(Opens(sealed) && Opens(first));
  WriteFile(file("server-former.key"), own);
  const std::string tried = "; tried: " + FingerprintOf(other) + " (" + file("server.key") + "); " +
                            file("server-former.key") + " is no key of 64 hexadecimal digits";
  EXPECT_EQ(ReasonFor(sealed), "The file is sealed to the key " + own + tried);
  EXPECT_EQ(ReasonFor(first), "The file was altered, or it is sealed to another key" + tried);
}

TEST_F(FileSealerTest, KnowsWhatIsSealedToTheOwnKeyAndSealsItAgainAsVersion2) {
  const std::string own = Seal("text");
  const std::string first = SealedAs1(OwnKey(), "text");
  std::string future = own;
  future[VERSION] = '\x03';
  const PublicKey server = MakePair("server");
  const auto isOwn = [&](const std::string& sealed) {
    WriteFile(altered_, sealed);
    return sealer_.IsSealedToOwnKey(altered_);
  };
  EXPECT_TRUE(isOwn(own) && isOwn(first) && isOwn(own.substr(0, START)));
  EXPECT_FALSE(isOwn(Seal("text")) || isOwn(SealedAs1(server, "text")) ||
               isOwn(first.substr(0, 9)));
  for (const auto& unknown : {future, own.substr(0, START - 1), std::string("{}")}) {
    EXPECT_THROW(isOwn(unknown), SealedFileError);
  }
  EXPECT_TRUE(isOwn(first));
  sealer_.SealAgain(altered_);
  EXPECT_EQ(SealedStartOf(altered_).key, IdentifierOf(server));
  fs::remove(folder_ / "keys" / "agent.key");
  EXPECT_TRUE(Opens(ContentOf(altered_)));
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
  fs::create_directory(folder_ / "elsewhere");
  const FileSealer keyless(folder_ / "elsewhere");
  EXPECT_THAT([&] { keyless.Open(altered_, opened_); },
              ThrowsMessage<std::runtime_error>(HasSubstr("there is no private key (*.key) in")));
  EXPECT_THROW(sealer_.Open(folder_ / "missing", opened_), std::runtime_error);
  EXPECT_FALSE(fs::exists(opened_));
}

TEST(KeyIdentifiers, AreThoseOfTheDocumentedFormat) {
  PublicKey key;
  std::iota(key.begin(), key.end(), static_cast<unsigned char>(0));
  EXPECT_EQ(FingerprintOf(IdentifierOf(key)), "f39a2cad58411cd49f577e5086b8031f");
}

TEST_F(FileSealerTest, FollowsTheDocumentedFormat) {
  // By hand, step by step as docs/outbox-format.md says, for a document of two chunks.
  const std::string document = Pattern(65536 + 5);
  const std::string file = Seal(document);
  const auto* bytes = reinterpret_cast<const unsigned char*>(file.data());
  EXPECT_EQ(file.substr(0, VERSION + 1), "NRVKSEAL\x02");

  unsigned char privateKey[32], publicKey[32], streamKey[32];
  const std::string line = ContentOf(folder_ / "keys" / "agent.key");
  ASSERT_EQ(line.size(), 65u);
  ASSERT_EQ(sodium_hex2bin(privateKey, 32, line.data(), 64, nullptr, nullptr, nullptr), 0);
  crypto_scalarmult_base(publicKey, privateKey);
  unsigned char identifier[16];
  crypto_generichash(identifier, 16, publicKey, 32, nullptr, 0);
  EXPECT_EQ(std::memcmp(bytes + VERSION + 1, identifier, 16), 0);
  ASSERT_EQ(crypto_box_seal_open(streamKey, bytes + START, 80, publicKey, privateKey), 0);

  crypto_secretstream_xchacha20poly1305_state state;
  crypto_secretstream_xchacha20poly1305_init_pull(&state, bytes + SEALED_KEY_END, streamKey);
  std::string opened;
  for (const auto& [at, size, wanted] :
       {std::tuple(CHUNKS, 65536u, 0), {CHUNKS + FULL_CHUNK, 5u, 3}}) {
    std::vector<unsigned char> chunk(size);
    unsigned char tag = 255;
    ASSERT_EQ(crypto_secretstream_xchacha20poly1305_pull(&state, chunk.data(), nullptr, &tag,
                                                         bytes + at, size + 17, bytes, START),
              0);
    EXPECT_EQ(tag, wanted);
    opened.append(chunk.begin(), chunk.end());
  }
  EXPECT_TRUE(opened == document);
}

}  // namespace
