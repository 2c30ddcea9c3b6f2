#include "common/database/AgentDatabase.h"

#include <sys/wait.h>

#include <boost/filesystem/fstream.hpp>

#include "common/database/DatabaseSchema.h"
#include "common/database/FreedSpace.h"
#include "support/Test.h"
#include "support/TestDatabase.h"

namespace Norvik::Common {
namespace {

using namespace Tests;
using V2::DataBase;

constexpr std::streamoff PageSize = 65536;
const std::string FileName = SQLiteNames::SQLITE_CURRENT_DATABASE_NAME;

void Overwrite(const fs::path& file, std::streamoff offset, const std::string& bytes) {
  fs::fstream stream(file, std::ios::binary | std::ios::in | std::ios::out);
  stream.seekp(offset);
  stream << bytes;
}

// Enough rows that the database has some dozens of pages.
void Fill() {
  DataBase dataBase;
  const std::string insert = "insert into DATA(name, value) values('{1}', '{2}')";
  for (int number = 0; number < 2000; ++number) {
    dataBase.ExecuteSentence(insert, {number, std::string(1200, 'v')});
  }
  dataBase.Commit();
}

fs::path KeptOfDamaged(const fs::path& folder) {
  // Who only reads leaves all as it is.
  EXPECT_THAT([&] { AgentDatabase(folder, AgentDatabase::Access::ReadOnly); },
              ThrowsMessage<std::runtime_error>(HasSubstr("it is damaged")));
  try {
    const AgentDatabase database(folder);
  } catch (const CorruptDatabaseError& error) {
    EXPECT_THAT(error.what(), HasSubstr(error.KeptAs().string()));
    return error.KeptAs();
  }
  ADD_FAILURE() << "the damage was not found";
  return {};
}

TEST(AgentDatabase, IsReadableByItsOwnerOnly) {
  const mode_t before = ::umask(0);
  const TestDatabase database;
  DataBase::SetDataTable("k", 5);
  ::umask(before);
  const auto files = FilesBelow(database.Folder());
  EXPECT_THAT(files, SizeIs(3));  // with -wal and -shm
  for (const auto& file : files) EXPECT_EQ(ModeOf(database.Folder() / file), 0600U) << file;
}

TEST(AgentDatabase, KeepsItsDataOverARestartWhateverTheNameOfItsFolder) {
  const TemporaryFolder temporary;
  for (const char* name : {"with blank", "it's", "a=b c", "a\"b", "{1}%2%", "\xC3\xB1"}) {
    const fs::path folder = temporary / name;
    fs::create_directory(folder);
    {
      const AgentDatabase database(folder);
      DataBase::SetDataTable("k", 7);
    }
    const AgentDatabase database(folder);
    EXPECT_EQ(DataBase::GetDataTable("k"), 7) << name;
    EXPECT_TRUE(fs::exists(folder / FileName)) << name;
  }
}

TEST(AgentDatabase, IsOneAtATimeInAProcess) {
  const TestDatabase database;
  const TemporaryFolder other;
  EXPECT_THROW(AgentDatabase second(other.Path()), std::runtime_error);
  DataBase::SetDataTable("k", 1);
  EXPECT_EQ(DataBase::GetDataTable("k"), 1);
}

TEST(AgentDatabase, PutsADamagedFileAsideAndStartsAfreshTheNextTime) {
  const std::pair<const char*, std::function<void(const fs::path&)>> cases[] = {
      {"text", [](const auto& file) { WriteFile(file, "this is no database\n"); }},
      {"large text", [](const auto& file) { WriteFile(file, std::string(100000, 'x')); }},
      {"header", [](const auto& file) { Overwrite(file, 0, "broken"); }},
      {"first page", [](const auto& file) { Overwrite(file, 100, std::string(3000, '\xFF')); }},
      {"page", [](const auto& file) { Overwrite(file, 40 * PageSize, std::string(64, '\xFF')); }},
      {"zeroed page",
       [](const auto& file) { Overwrite(file, 41 * PageSize, std::string(PageSize, '\0')); }},
      {"cut at a page", [](const auto& file) { fs::resize_file(file, 30 * PageSize); }},
      {"cut in a page", [](const auto& file) { fs::resize_file(file, 30 * PageSize + 77); }},
  };
  // All in one folder: no damaged file may go for a later one.
  TestDatabase database;
  std::map<fs::path, std::string> allKept;
  for (const auto& [name, damage] : cases) {
    SCOPED_TRACE(name);
    Fill();
    database.Close();
    damage(database.File());
    const std::string damaged = ContentOf(database.File());
    const fs::path kept = KeptOfDamaged(database.Folder());
    EXPECT_THAT(kept.string(), HasSubstr(database.File().string() + ".corrupt-2"));
    EXPECT_TRUE(allKept.emplace(kept, damaged).second) << kept;
    EXPECT_THAT(FilesBelow(database.Folder()), Each(HasSubstr(".corrupt-2")));
    database.Open();
    EXPECT_TRUE(DataBase::IsTableEmpty("DATA"));
  }
  for (const auto& [kept, content] : allKept) EXPECT_TRUE(ContentOf(kept) == content) << kept;
}

TEST(AgentDatabase, KeepsTheLogOfADamagedFileBesideIt) {
  TestDatabase live;
  Fill();
  live.Reopen();
  DataBase::SetDataTable("only in the log", 1);
  const TemporaryFolder copy;
  for (const auto& file : FilesBelow(live.Folder()))
    fs::copy_file(live.Folder() / file, copy / file);
  const fs::path main = copy / FileName;
  const std::string log = ContentOf(main.string() + "-wal");
  ASSERT_THAT(log, HasSubstr("only in the log"));
  Overwrite(main, 40 * PageSize, std::string(64, '\xFF'));
  live.Close();

  const fs::path kept = KeptOfDamaged(copy.Path());
  EXPECT_TRUE(ContentOf(kept.string() + "-wal") == log);
  EXPECT_FALSE(fs::exists(main.string() + "-wal"));
  EXPECT_FALSE(fs::exists(main.string() + "-shm"));
}

TEST(AgentDatabase, TakesNoOtherFailureForDamage) {
  const TemporaryFolder folder;
  EXPECT_THAT([&] { AgentDatabase database(folder / "missing"); },
              ThrowsMessage<std::runtime_error>(HasSubstr("No such file or directory")));
  fs::create_directory(folder / FileName);
  EXPECT_THAT([&] { AgentDatabase database(folder.Path()); },
              ThrowsMessage<std::runtime_error>(HasSubstr("Is a directory")));
  EXPECT_TRUE(fs::is_directory(folder / FileName));

  TestDatabase database;
  DataBase::SetDataTable("k", 4);
  database.Close();
  {
    const FullDisk full(0);
    EXPECT_THROW(database.Open(), std::runtime_error);
  }
  EXPECT_THAT(FilesBelow(database.Folder()), Each(StartsWith("./" + FileName)));
  EXPECT_THAT(FilesBelow(database.Folder()), Each(Not(HasSubstr("corrupt"))));
  database.Open();
  EXPECT_EQ(DataBase::GetDataTable("k"), 4);
}

TEST(AgentDatabase, RefusesAnUnknownSchemaAndLeavesItAlone) {
  const std::pair<const char*, const char*> cases[] = {
      {"9000", "schema has version 9000"},
      {"-1", "schema has version -1"},
      {"0", "already exists"}};  // as if the tables were another program's
  for (const auto& entry : cases) {
    TestDatabase database;
    EXPECT_EQ(TestDatabase::Run("PRAGMA user_version"),
              V2::DataBaseRows({{NewestSchemaVersion()}}));
    TestDatabase::Run(std::string("PRAGMA user_version=") + entry.first);
    database.Close();
    const std::string content = ContentOf(database.File());
    EXPECT_THAT([&] { database.Open(); },
                ThrowsMessage<std::runtime_error>(HasSubstr(entry.second)));
    EXPECT_TRUE(ContentOf(database.File()) == content);
    EXPECT_THAT(FilesBelow(database.Folder()), ElementsAre("./" + FileName));
  }
}

TEST(AgentDatabase, IsMadeOnceByProcessesThatStartTogether) {
  const TemporaryFolder folder;
  std::vector<pid_t> children;
  for (int process = 0; process < 6; ++process) {
    children.push_back(::fork());
    if (children.back() != 0) continue;
    const std::string fault = MessageOf<std::exception>([&] {
      const AgentDatabase database(folder.Path());
      DataBase::SetDataTable("process " + std::to_string(process), 1);
    });
    ::write(STDERR_FILENO, fault.data(), fault.size());
    ::_exit(fault.empty() ? 0 : 1);
  }
  for (const pid_t child : children) {
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
  }
  const AgentDatabase database(folder.Path());
  EXPECT_THAT(DataBase().ExecuteSentence("select * from DATA"), SizeIs(6));
}

TEST(AgentDatabase, GivesTheSpaceOfDeletedRowsBack) {
  TestDatabase database;
  const auto bytes = [&] { return boost::filesystem::file_size(database.File()); };
  const auto fill = [](int megabytes) {
    TestDatabase::Run("insert into KOB_DATA values(1, 'x', zeroblob(" +
                      std::to_string(megabytes << 20) + "))");
  };
  const auto empty = [] { TestDatabase::Run("delete from KOB_DATA"); };
  fill(8);
  database.Close();  // until then the rows are in the write-ahead log
  database.Open();
  EXPECT_GT(bytes(), 8u << 20);
  GiveBackFreedSpace(empty);
  EXPECT_LT(bytes(), 2u << 20);
  fill(70);
  empty();
  database.Close();
  EXPECT_GT(bytes(), 70u << 20);  // kept for the next rows
  database.Open();
  EXPECT_LT(bytes(), 2u << 20);  // but a start does not keep that much
}

TEST(AgentDatabase, GivesAWholeTable) {
  const TestDatabase database;
  const auto get = [&](int offset, int limit, int order) {
    return database.Get()->GetTable("KOB_NETWORK_DRIVES", offset, limit, order);
  };
  EXPECT_THAT(get(0, 0, 0), IsNull());
  EXPECT_THAT(database.Get()->GetTable("MISSING", 0, 0, 0), IsNull());
  TestDatabase::Run("insert into KOB_NETWORK_DRIVES(id, Unit) values(1, 'Y'), (2, 'X'), (3, 'W')");
  const auto table = get(0, 0, 0);
  EXPECT_THAT(table->columns, SizeIs(4));
  EXPECT_EQ(table->columns[1].name, "Unit");
  EXPECT_EQ(table->columns[1].declaredType, "TEXT");
  EXPECT_THAT(table->rows,
              ElementsAre(Contains("Y"), Contains("X"), ElementsAre("3", "W", "", "")));
  EXPECT_THAT(get(1, 1, 2)->rows, ElementsAre(ElementsAre("2", "X", "", "")));
  EXPECT_THAT(get(0, 1, 2)->rows, ElementsAre(ElementsAre("3", "W", "", "")));
  EXPECT_THROW(get(0, 0, 9), std::exception);
}

}  // namespace
}  // namespace Norvik::Common
