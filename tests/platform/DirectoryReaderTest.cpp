#include "platform/DirectoryReader.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <cstring>

#include "support/FolderRows.h"
#include "support/Test.h"

namespace {

using namespace Norvik;
using namespace Norvik::Tests;
using Platform::BulkCall;
using Platform::BulkWay;
using Platform::ReadingWay;

struct Folder {
  void MakeFiles(int count) const {
    for (int i = 0; i < count; ++i) {
      const auto length = static_cast<std::size_t>(i);
      WriteFile(folder / (std::string(1 + length % 90, 'n') + std::to_string(i)),
                std::string(length, 'x'));
    }
  }
  /// Entries of all kinds, with names and times of all kinds.
  void MakeAllKinds() const {
    MakeFiles(3);
    const auto path = [&](const std::string& name) { return (folder / name).string(); };
    for (const std::string& name : {std::string(255, 'l'), std::string("\xFF\xFE"),
                                    std::string("caf\xC3\xA9.txt"), std::string("two\nlines")}) {
      WriteFile(path(name), name);
    }
    fs::last_write_time(path("two\nlines"), -3);
    fs::create_directory(path("folder"));
    fs::create_symlink("n0", path("link"));
    fs::create_symlink("nowhere", path("dangling"));
    fs::create_hard_link(path("n0"), path("same as n0"));
    ASSERT_EQ(::truncate(path("nn1").c_str(), 5'000'000'000), 0);
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    path("socket").copy(address.sun_path, sizeof(address.sun_path) - 1);
    const Platform::FileDescriptor server(::socket(AF_UNIX, SOCK_STREAM, 0));
    ASSERT_EQ(::bind(server.Get(), reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
    // Only root may make a device.
    ::mknod(path("device").c_str(), S_IFCHR | 0600, 259);
  }
  std::string Path() const { return folder.Path().string(); }
  TextList Rows(const ReadingWay& way) const { return RowsOf(way, Path()); }

  TemporaryFolder folder;
};

TEST(DirectoryReader, GivesTheSameRowsEitherWayWithBuffersOfAnySize) {
  const Folder allKinds;
  allKinds.MakeAllKinds();
  const TextList rows = allKinds.Rows({});
  ASSERT_THAT(rows.size(), AnyOf(13U, 14U));
  for (std::size_t bytes = 0; bytes < 1000; ++bytes) {
    Platform::DirectoryReader reader({BulkWay().bulk, bytes});
    ASSERT_EQ(RowsOf(reader, allKinds.Path()), rows) << bytes;
    ASSERT_EQ(reader.Calls().metadata, 0U) << bytes;
  }
  Platform::DirectoryReader reused(BulkWay());
  for (const int count : {0, 1, 2, 50, 400}) {
    reused.Open(allKinds.Path());  // and left after an entry
    Platform::DirectoryEntry entry;
    std::error_code error;
    EXPECT_TRUE(reused.Next(entry, error));
    const Folder files;
    files.MakeFiles(count);
    ASSERT_EQ(RowsOf(reused, files.Path()), files.Rows({})) << count;
  }
}

/// What is read with a fault from the call `first` to the call `last`: the error `number` or, if it
/// is 0, another word at a place of the first entry.
std::string RowsWithFault(int first, int last, int number, std::size_t place, std::uint32_t word) {
  const Folder files;
  files.MakeFiles(40);
  int calls = 0;
  const BulkCall faulty = [&](int folder, void* wanted, void* buffer, std::size_t size,
                              std::uint64_t options) {
    const bool isFaulty = first <= ++calls && calls <= last;
    errno = number;
    if (isFaulty && number != 0) return -1;
    const int count = BulkWay().bulk(folder, wanted, buffer, size, options);
    if (isFaulty) std::memcpy(static_cast<char*>(buffer) + place, &word, sizeof(word));
    return count;
  };
  Platform::DirectoryReader reader({faulty, 512});
  const TextList rows = RowsOf(reader, files.Path());
  const TextList all = files.Rows({});
  const auto other = std::mismatch(rows.begin(), rows.end(), all.begin(), all.end()).first;
  return (rows == all ? "all, " : "some, ") + (other == rows.end() ? "" : *other + ", ") +
         std::to_string(reader.Calls().metadata) + " by name";
}

TEST(DirectoryReader, AFaultOfTheBulkIsARefusalAtFirstAndLaterEndsTheFolder) {
  ExpectRows(DataOf("platform/bulk-faults.json"), RowsWithFault);
}

/// An entry: the words before its name with the length of all as the first, and the name.
std::string Packed(std::vector<std::uint32_t> words, const std::string& name) {
  const std::size_t fixed = words.size() * sizeof(words[0]);
  std::string bytes(fixed + (name.size() + 8) / 8 * 8, '\0');
  words[0] = static_cast<std::uint32_t>(bytes.size());
  std::memcpy(&bytes[0], words.data(), fixed);
  name.copy(&bytes[fixed], name.size());
  return bytes;
}

std::string WithError(const std::string& name) {
  const auto length = static_cast<std::uint32_t>(name.size() + 1);
  return Packed({0, 0xA0000001, 0, 0, 0, 0, 5, 8, length}, name);
}

/// Gives these entries by every other call, and expects to be called as macOS wants it.
BulkCall Giving(const TextList& entries) {
  return [=, calls = 0](int, void* wanted, void* buffer, std::size_t, std::uint64_t) mutable {
    const std::vector<std::uint32_t> words = {5, 0xA0000409, 0, 0, 0x200, 0};
    EXPECT_EQ(std::memcmp(wanted, words.data(), 24), 0);
    std::string all;
    for (const auto& entry : entries) all += entry;
    all.copy(static_cast<char*>(buffer), all.size());
    return calls++ % 2 == 0 ? static_cast<int>(entries.size()) : 0;
  };
}

TEST(DirectoryReader, PacksAndUnpacksAsTheKernelOfAMac) {
  const TextList entries = {
      Packed({0, 0x80000409, 0, 0, 0x200, 0, 40, 4, 1, 0xFFFFFFFE, 0xFFFFFFFF, 0, 0, 3, 0, 0},
             "abc"),
      Packed({0, 0x80000409, 0, 0, 0, 0, 28, 2, 2, 8, 0, 7, 0}, "."),
      Packed({0, 0x80000409, 0, 0, 0, 0, 28, 2, 2, 9, 0, 7, 0}, "b"),
      Packed({0, 0xA0000409, 0, 0, 0, 0, 5, 28, 2, 2, 7, 0, 0, 0}, "e")};
  const Folder made;
  EXPECT_THAT(made.Rows({Giving(entries)}),
              ElementsAre("abc 1 3 -2", "b 2 0 9", "e 2 0 0 No such file or directory"));
  WriteFile(made.folder / "abc", "abc");
  fs::last_write_time(made.folder / "abc", -2);
  std::string packed;
  made.Rows({[&](int folder, void* wanted, void* buffer, std::size_t size, std::uint64_t options) {
    const int count = BulkWay().bulk(folder, wanted, buffer, size, options);
    if (count > 0) packed.assign(static_cast<char*>(buffer), entries[0].size());
    return count;
  }});
  EXPECT_EQ(packed, entries[0]);
}

TEST(DirectoryReader, ReadsAnEntryWithAnErrorAsIfItWereOnlyListed) {
  const Folder made, other;
  made.MakeFiles(1);
  fs::create_directory(made.folder / "folder");
  fs::create_directory(other.folder / "n0");
  Platform::DirectoryReader bulk(BulkWay()), failing({Giving({WithError("n0")})});
  const BulkCall call = Giving({WithError("folder"), WithError("n0"), WithError("gone")});
  TextList rows = made.Rows({});
  EXPECT_THAT(RowsOf(bulk, made.Path()), UnorderedElementsAreArray(rows));
  rows.push_back("gone 0 0 0 No such file or directory");
  EXPECT_THAT(made.Rows({call}), UnorderedElementsAreArray(rows));
  // The folders can be listed, but nothing in them can be read; even if root runs the test.
  const auto self = ::geteuid();
  const auto permit = [&](fs::perms permissions) {
    for (const auto* each : {&made, &other}) fs::permissions(each->Path(), permissions);
  };
  permit(fs::owner_read | fs::group_read | fs::others_read);
  ASSERT_EQ(self == 0 ? ::seteuid(65534) : 0, 0);
  const Scope asBefore([&] {
    EXPECT_EQ(::seteuid(self), 0);
    permit(fs::owner_all);
  });
  const std::string file = "n0 1 0 0 Permission denied", folder = "folder 2 0 0 Permission denied";
  EXPECT_THAT(made.Rows({}), UnorderedElementsAre(file, folder));
  EXPECT_THAT(made.Rows({call}),
              UnorderedElementsAre(file, folder, "gone 0 0 0 Permission denied"));
  EXPECT_THAT(RowsOf(bulk, made.Path()), UnorderedElementsAre(file, folder)) << "it is refused";
  EXPECT_EQ(bulk.Calls().metadata, 2U);
  EXPECT_THAT(RowsOf(failing, made.Path()), ElementsAre(file));
  EXPECT_THAT(RowsOf(failing, other.Path()), ElementsAre("n0 2 0 0 Permission denied"));
}

TEST(DirectoryReader, AFolderThatIsRemovedMeanwhileHasEnded) {
  for (const auto& way : {ReadingWay(), ReadingWay{BulkWay().bulk, 100}}) {
    for (const int before : {0, 1}) {
      const TemporaryFolder folder;
      fs::create_directory(folder / "gone");
      for (const char* name : {"a", "b"}) WriteFile(folder / "gone" / name, "");
      Platform::DirectoryReader reader(way);
      reader.Open((folder / "gone").string());
      Platform::DirectoryEntry entry;
      std::error_code error;
      for (int i = 0; i < before; ++i) EXPECT_TRUE(reader.Next(entry, error));
      fs::remove_all(folder / "gone");
      while (before > 0 && reader.Next(entry, error)) continue;
      EXPECT_FALSE(reader.Next(entry, error));
      EXPECT_FALSE(error) << error.message();
    }
  }
}

}  // namespace
