// Run when the build is configured, see OneSqlite.cmake.

#include "common/database/OneSqlite.h"

#include <cstdio>

int main() {
  const bool one = Norvik::Common::SociUsesOurSqlite();
  std::puts(one ? "one copy of SQLite" : "two copies of SQLite");
  return one ? 0 : 1;
}
