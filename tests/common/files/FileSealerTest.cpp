#include "common/files/FileSealer.h"

#include <gtest/gtest.h>
#include <sodium.h>
#include <sys/stat.h>

#include <string>
#include <vector>

#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace Norvik::Common;
using Norvik::Tests::ContentOf;
using Norvik::Tests::TemporaryFolder;
using Norvik::Tests::WriteFile;
namespace fs = boost::filesystem;

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
  /// Whether a file of these bytes opens. If not, it must leave nothing behind.
  bool Opens(const std::string& sealed) {
    WriteFile(folder_ / "altered", sealed);
    fs::remove(folder_ / "opened");
    try {
      sealer_.Open(folder_ / "altered", folder_ / "opened");
      return true;
    } catch (const SealedFileError&) {
      EXPECT_FALSE(fs::exists(folder_ / "opened"));
      return false;
    }
  }

  TemporaryFolder folder_;
  FileSealer sealer_{folder_ / "keys"};
};

TEST_F(FileSealerTest, OpensWhatItSealedWhateverTheSize) {
  for (const std::size_t size : {0, 1, 65535, 65536, 65537, 131072, 307200}) {
    const std::string content = Pattern(size);
    const std::string sealed = Seal(content);
    const std::size_t chunks = size == 0 ? 1 : (size + 65535) / 65536;
    EXPECT_EQ(sealed.size(), CHUNKS + size + 17 * chunks);
    sealer_.Open(folder_ / "sealed", folder_ / "opened");
    EXPECT_TRUE(ContentOf(folder_ / "opened") == content) << size;
  }
}

TEST_F(FileSealerTest, SealsAndOpensInPlace) {
  WriteFile(folder_ / "file", "content");
  sealer_.Seal(folder_ / "file", folder_ / "file");
  EXPECT_EQ(ContentOf(folder_ / "file").find("content"), std::string::npos);
  sealer_.Open(folder_ / "file", folder_ / "file");
  EXPECT_EQ(ContentOf(folder_ / "file"), "content");
}

TEST_F(FileSealerTest, NeverGivesTheSameBytesTwice) { EXPECT_NE(Seal("same"), Seal("same")); }

TEST_F(FileSealerTest, OpensNoFileThatWasCutAnywhere) {
  const std::string small = Seal("a short document");
  for (std::size_t length = 0; length < small.size(); ++length) {
    EXPECT_FALSE(Opens(small.substr(0, length))) << length;
  }
  const std::string large = Seal(Pattern(2 * 65536 + 100));
  for (const std::size_t border :
       {CHUNKS, CHUNKS + FULL_CHUNK, CHUNKS + 2 * FULL_CHUNK, large.size() - 1}) {
    for (const std::size_t length : {border - 17, border - 1, border, border + 1, border + 17}) {
      if (length >= large.size()) continue;
      EXPECT_FALSE(Opens(large.substr(0, length))) << length;
    }
  }
  EXPECT_TRUE(Opens(large));
}

TEST_F(FileSealerTest, OpensNoFileThatWasAltered) {
  const std::string sealed = Seal("a short document");
  for (std::size_t at = 0; at < sealed.size(); ++at) {
    for (const char bit : {'\x01', '\x80'}) {
      std::string altered = sealed;
      altered[at] = static_cast<char>(altered[at] ^ bit);
      EXPECT_FALSE(Opens(altered)) << at;
    }
  }
}

TEST_F(FileSealerTest, OpensNoFileWhoseChunksWereMoved) {
  const std::string sealed = Seal(Pattern(3 * 65536));
  const std::string start = sealed.substr(0, CHUNKS);
  const std::string one = sealed.substr(CHUNKS, FULL_CHUNK);
  const std::string two = sealed.substr(CHUNKS + FULL_CHUNK, FULL_CHUNK);
  const std::string last = sealed.substr(CHUNKS + 2 * FULL_CHUNK);
  EXPECT_TRUE(Opens(start + one + two + last));
  for (const auto& altered : {start + two + one + last, start + one + last, start + one + one,
                              start + one + two + last + last, start + last, sealed + "x",
                              sealed + start, sealed + std::string(FULL_CHUNK, '\0')}) {
    EXPECT_FALSE(Opens(altered));
  }
}

TEST_F(FileSealerTest, LeavesAnEarlierTargetWhenTheFileDoesNotOpen) {
  const std::string sealed = Seal(Pattern(70000));
  WriteFile(folder_ / "altered", sealed.substr(0, sealed.size() - 1));
  WriteFile(folder_ / "opened", "earlier");
  EXPECT_THROW(sealer_.Open(folder_ / "altered", folder_ / "opened"), SealedFileError);
  EXPECT_EQ(ContentOf(folder_ / "opened"), "earlier");
}

TEST_F(FileSealerTest, MakesItsPairOnceAndKeepsThePrivateHalfPrivate) {
  Seal("text");
  const std::string key = ContentOf(folder_ / "keys" / "agent.key");
  struct stat status {};
  ASSERT_EQ(::stat((folder_ / "keys" / "agent.key").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
  ASSERT_EQ(::stat((folder_ / "keys").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0700u);

  // The public half comes back from the private one; a new pair would lose what is sealed.
  fs::remove(folder_ / "keys" / "agent.pub");
  const std::string sealed = Seal("text");
  EXPECT_EQ(ContentOf(folder_ / "keys" / "agent.key"), key);
  EXPECT_TRUE(Opens(sealed));
}

TEST_F(FileSealerTest, PrefersTheServersKeyAndThenCannotOpenTheFileItself) {
  Seal("text");
  unsigned char publicKey[32];
  unsigned char privateKey[32];
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

TEST_F(FileSealerTest, TellsAMissingKeyFromADamagedFile) {
  const std::string sealed = Seal("text");
  const FileSealer other(folder_ / "elsewhere");
  try {
    other.Open(folder_ / "sealed", folder_ / "opened");
    FAIL() << "opened without a key";
  } catch (const SealedFileError& error) {
    FAIL() << error.what();
  } catch (const std::runtime_error&) {
    EXPECT_FALSE(fs::exists(folder_ / "elsewhere"));
  }
  EXPECT_THROW(sealer_.Open(folder_ / "missing", folder_ / "opened"), std::runtime_error);
}

TEST_F(FileSealerTest, FollowsTheDocumentedFormat) {
  // By hand, step by step as docs/outbox-format.md says, for a document of two chunks.
  const std::string document = Pattern(65536 + 5);
  const std::string file = Seal(document);
  const auto* bytes = reinterpret_cast<const unsigned char*>(file.data());
  EXPECT_EQ(file.substr(0, MARK), std::string("NRVKSEAL\x01"));

  unsigned char privateKey[32];
  unsigned char publicKey[32];
  const std::string line = ContentOf(folder_ / "keys" / "agent.key");
  ASSERT_EQ(line.size(), 65u);
  ASSERT_EQ(sodium_hex2bin(privateKey, 32, line.data(), 64, nullptr, nullptr, nullptr), 0);
  crypto_scalarmult_base(publicKey, privateKey);
  unsigned char streamKey[32];
  ASSERT_EQ(crypto_box_seal_open(streamKey, bytes + MARK, 80, publicKey, privateKey), 0);

  crypto_secretstream_xchacha20poly1305_state state;
  ASSERT_EQ(
      crypto_secretstream_xchacha20poly1305_init_pull(&state, bytes + SEALED_KEY_END, streamKey),
      0);
  std::vector<unsigned char> first(65536);
  std::vector<unsigned char> second(5);
  unsigned char tag = 255;
  ASSERT_EQ(crypto_secretstream_xchacha20poly1305_pull(&state, first.data(), nullptr, &tag,
                                                       bytes + CHUNKS, FULL_CHUNK, bytes, MARK),
            0);
  EXPECT_EQ(tag, 0);
  ASSERT_EQ(
      crypto_secretstream_xchacha20poly1305_pull(&state, second.data(), nullptr, &tag,
                                                 bytes + CHUNKS + FULL_CHUNK, 5 + 17, bytes, MARK),
      0);
  EXPECT_EQ(tag, 3);
  std::string opened(first.begin(), first.end());
  opened.append(second.begin(), second.end());
  EXPECT_TRUE(opened == document);
}

}  // namespace
