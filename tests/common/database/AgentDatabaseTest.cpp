#include "common/database/AgentDatabase.h"

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <boost/filesystem/fstream.hpp>
#include <boost/filesystem/operations.hpp>
#include <functional>
#include <vector>

#include "common/database/DatabaseSchema.h"
#include "support/Files.h"
#include "support/TestDatabase.h"

namespace Norvik::Common {
namespace {

namespace fs = boost::filesystem;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsNull;
using testing::NotNull;
using testing::StartsWith;
using testing::ThrowsMessage;
using Tests::ContentOf;
using Tests::WriteFile;

constexpr std::streamoff PageSize = 4096;

void Overwrite(const fs::path& file, std::streamoff offset, const std::string& bytes) {
  fs::fstream stream(file, std::ios::binary | std::ios::in | std::ios::out);
  stream.seekp(offset);
  stream << bytes;
}

std::vector<std::string> FilesOf(const fs::path& folder) {
  std::vector<std::string> files;
  for (const auto& entry : fs::directory_iterator(folder)) files.push_back(entry.path().string());
  std::sort(files.begin(), files.end());
  return files;
}

// Enough rows that the database has a few hundred pages.
void Fill() {
  V2::DataBase dataBase;
  const std::string insert = "insert into DATA(name, value) values('{1}', '{2}')";
  for (int number = 0; number < 2000; ++number) {
    dataBase.ExecuteSentence(insert, {number, std::string(300, 'v')});
  }
  dataBase.Commit();
}

fs::path KeptOfDamaged(const fs::path& folder) {
  try {
    const AgentDatabase database(folder);
  } catch (const CorruptDatabaseError& error) {
    EXPECT_THAT(error.what(), HasSubstr(error.KeptAs().string()));
    return error.KeptAs();
  }
  ADD_FAILURE() << "the damage was not found";
  return {};
}

TEST(AgentDatabase, KeepsItsDataOverARestart) {
  Tests::TestDatabase database;
  V2::DataBase::SetDataTable("k", 5);
  database.Reopen();
  EXPECT_EQ(V2::DataBase::GetDataTable("k"), 5);
}

TEST(AgentDatabase, IsReadableByItsOwnerOnly) {
  const mode_t before = ::umask(0);
  Tests::TestDatabase database;
  V2::DataBase::SetDataTable("k", 5);
  ::umask(before);
  const auto files = FilesOf(database.Folder());
  EXPECT_EQ(files.size(), 3U);  // with -wal and -shm
  for (const auto& file : files) {
    EXPECT_EQ(fs::status(file).permissions(), fs::owner_read | fs::owner_write) << file;
  }
}

TEST(AgentDatabase, TakesAnyNameOfAFolder) {
  const Tests::TemporaryFolder temporary;
  for (const char* name : {"with blank", "it's", "a=b c", "a\"b", "{1}%2%", "\xC3\xB1"}) {
    const fs::path folder = temporary / name;
    fs::create_directory(folder);
    {
      const AgentDatabase database(folder);
      V2::DataBase::SetDataTable("k", 7);
    }
    const AgentDatabase database(folder);
    EXPECT_EQ(V2::DataBase::GetDataTable("k"), 7) << name;
    EXPECT_TRUE(fs::exists(folder / SQLiteNames::SQLITE_CURRENT_DATABASE_NAME)) << name;
  }
}

TEST(AgentDatabase, IsOneAtATimeInAProcess) {
  const Tests::TestDatabase database;
  const Tests::TemporaryFolder other;
  EXPECT_THROW(AgentDatabase second(other.Path()), std::runtime_error);
  V2::DataBase::SetDataTable("k", 1);
  EXPECT_EQ(V2::DataBase::GetDataTable("k"), 1);
}

TEST(AgentDatabase, PutsADamagedFileAsideAndStartsAfreshTheNextTime) {
  struct Case {
    const char* name;
    std::function<void(const fs::path&)> damage;
  };
  const Case cases[] = {
      {"text", [](const fs::path& file) { WriteFile(file, "this is no database\n"); }},
      {"large text", [](const fs::path& file) { WriteFile(file, std::string(100000, 'x')); }},
      {"header", [](const fs::path& file) { Overwrite(file, 0, "broken"); }},
      {"first page", [](const fs::path& file) { Overwrite(file, 100, std::string(3000, '\xFF')); }},
      {"page",
       [](const fs::path& file) { Overwrite(file, 60 * PageSize, std::string(64, '\xFF')); }},
      {"zeroed page",
       [](const fs::path& file) { Overwrite(file, 61 * PageSize, std::string(PageSize, '\0')); }},
      {"cut at a page", [](const fs::path& file) { fs::resize_file(file, 50 * PageSize); }},
      {"cut in a page", [](const fs::path& file) { fs::resize_file(file, 50 * PageSize + 77); }},
  };
  for (const auto& [name, damage] : cases) {
    SCOPED_TRACE(name);
    Tests::TestDatabase database;
    Fill();
    database.Close();
    damage(database.File());
    const std::string damaged = ContentOf(database.File());

    const fs::path kept = KeptOfDamaged(database.Folder());
    EXPECT_TRUE(ContentOf(kept) == damaged);
    EXPECT_THAT(kept.string(), HasSubstr(database.File().string() + ".corrupt-2"));
    EXPECT_THAT(FilesOf(database.Folder()), Each(StartsWith(kept.string())));

    database.Open();
    EXPECT_TRUE(V2::DataBase::IsTableEmpty("DATA"));
  }
}

TEST(AgentDatabase, KeepsTheLogOfADamagedFileBesideIt) {
  Tests::TestDatabase live;
  Fill();
  live.Reopen();
  V2::DataBase::SetDataTable("only in the log", 1);
  const Tests::TemporaryFolder copy;
  for (const auto& file : FilesOf(live.Folder()))
    fs::copy_file(file, copy / fs::path(file).filename());
  const fs::path main = copy / SQLiteNames::SQLITE_CURRENT_DATABASE_NAME;
  const std::string log = ContentOf(main.string() + "-wal");
  ASSERT_THAT(log, HasSubstr("only in the log"));
  Overwrite(main, 60 * PageSize, std::string(64, '\xFF'));
  live.Close();

  const fs::path kept = KeptOfDamaged(copy.Path());
  EXPECT_TRUE(ContentOf(kept.string() + "-wal") == log);
  EXPECT_FALSE(fs::exists(main.string() + "-wal"));
  EXPECT_FALSE(fs::exists(main.string() + "-shm"));
}

TEST(AgentDatabase, NeverOverwritesAnEarlierDamagedFile) {
  Tests::TestDatabase database;
  database.Close();
  std::vector<fs::path> kept;
  for (const char* content : {"first damage", "second damage", "third damage"}) {
    WriteFile(database.File(), content);
    kept.push_back(KeptOfDamaged(database.Folder()));
    EXPECT_EQ(ContentOf(kept.back()), content);
  }
  EXPECT_EQ(ContentOf(kept.front()), "first damage");
  EXPECT_EQ(FilesOf(database.Folder()).size(), 3U);
}

TEST(AgentDatabase, TakesNoOtherFailureForDamage) {
  const Tests::TemporaryFolder folder;
  EXPECT_THAT([&] { AgentDatabase database(folder / "missing"); },
              ThrowsMessage<std::runtime_error>(HasSubstr("No such file or directory")));

  const fs::path file = folder / SQLiteNames::SQLITE_CURRENT_DATABASE_NAME;
  fs::create_directory(file);
  EXPECT_THAT([&] { AgentDatabase database(folder.Path()); },
              ThrowsMessage<std::runtime_error>(HasSubstr("Is a directory")));
  EXPECT_THAT(FilesOf(folder.Path()), ElementsAre(file.string()));
}

TEST(AgentDatabase, TakesADiskWithoutRoomForNoDamage) {
  Tests::TestDatabase database;
  V2::DataBase::SetDataTable("k", 4);
  database.Close();
  const pid_t child = ::fork();
  if (child == 0) {
    ::signal(SIGXFSZ, SIG_IGN);
    const rlimit nothing{0, 0};
    ::setrlimit(RLIMIT_FSIZE, &nothing);
    try {
      database.Open();
    } catch (const CorruptDatabaseError&) {
      ::_exit(2);
    } catch (const std::runtime_error&) {
      ::_exit(0);
    }
    ::_exit(1);
  }
  int status = -1;
  ::waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  database.Open();
  EXPECT_EQ(V2::DataBase::GetDataTable("k"), 4);
}

TEST(AgentDatabase, RefusesAnUnknownSchemaAndLeavesItAlone) {
  for (const char* version : {"9000", "-1"}) {
    Tests::TestDatabase database;
    EXPECT_EQ(Tests::TestDatabase::Run("PRAGMA user_version").at(0).at(0),
              V2::DataBaseValue(NewestSchemaVersion()));
    Tests::TestDatabase::Run(std::string("PRAGMA user_version=") + version);
    database.Close();
    const std::string content = ContentOf(database.File());
    EXPECT_THAT(
        [&] { database.Open(); },
        ThrowsMessage<std::runtime_error>(HasSubstr(std::string("schema has version ") + version)));
    EXPECT_TRUE(ContentOf(database.File()) == content);
  }
}

TEST(AgentDatabase, LeavesAnotherProgramsDatabaseAsItIs) {
  Tests::TestDatabase database;
  Tests::TestDatabase::Run("PRAGMA user_version=0");  // as if the tables were another's
  V2::DataBase::SetDataTable("k", 3);
  database.Close();
  EXPECT_THAT([&] { database.Open(); },
              ThrowsMessage<std::runtime_error>(HasSubstr("already exists")));
  EXPECT_THAT(FilesOf(database.Folder()), ElementsAre(database.File().string()));
}

TEST(AgentDatabase, IsMadeOnceByProcessesThatStartTogether) {
  const Tests::TemporaryFolder folder;
  constexpr int Processes = 6;
  std::vector<pid_t> children;
  for (int process = 0; process < Processes; ++process) {
    const pid_t child = ::fork();
    if (child == 0) {
      int status = 0;
      try {
        const AgentDatabase database(folder.Path());
        V2::DataBase::SetDataTable("process " + std::to_string(process), 1);
      } catch (const std::exception& error) {
        ::write(STDERR_FILENO, error.what(), std::char_traits<char>::length(error.what()));
        status = 1;
      }
      ::_exit(status);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) {
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
  }
  const AgentDatabase database(folder.Path());
  EXPECT_EQ(V2::DataBase().ExecuteSentence("select * from DATA").size(), std::size_t{Processes});
}

TEST(AgentDatabase, GivesAWholeTable) {
  Tests::TestDatabase database;
  EXPECT_THAT(database.Get()->GetTable("KOB_NETWORK_DRIVES", 0, 0, 0), IsNull());
  EXPECT_THAT(database.Get()->GetTable("MISSING", 0, 0, 0), IsNull());
  for (const int id : {1, 2, 3}) {
    Tests::TestDatabase::Run("insert into KOB_NETWORK_DRIVES(id, Unit) values({1}, '{2}')",
                             {id, std::string(1, static_cast<char>('Z' - id))});
  }
  const auto table = database.Get()->GetTable("KOB_NETWORK_DRIVES", 0, 0, 0);
  ASSERT_THAT(table, NotNull());
  ASSERT_EQ(table->columns.size(), 4U);
  EXPECT_EQ(table->columns[1].name, "Unit");
  EXPECT_EQ(table->columns[1].declaredType, "TEXT");
  EXPECT_THAT(table->rows, ElementsAre(ElementsAre("1", "Y", "", ""), ElementsAre("2", "X", "", ""),
                                       ElementsAre("3", "W", "", "")));

  const auto part = database.Get()->GetTable("KOB_NETWORK_DRIVES", 1, 1, 2);
  ASSERT_THAT(part, NotNull());
  EXPECT_THAT(part->rows, ElementsAre(ElementsAre("2", "X", "", "")));
  EXPECT_THROW(database.Get()->GetTable("KOB_NETWORK_DRIVES", 0, 0, 9), std::exception);
}

}  // namespace
}  // namespace Norvik::Common
