#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <time.h>

#include <boost/filesystem/operations.hpp>
#include <clocale>
#include <functional>
#include <iostream>
#include <locale>

#include "platform/FileDescriptor.h"

/// Changes of the process for the lifetime of an object.
namespace Norvik::Tests {

class Scope {
 public:
  explicit Scope(std::function<void()> atEnd) : atEnd_(std::move(atEnd)) {}
  Scope(const Scope&) = delete;
  Scope& operator=(const Scope&) = delete;
  ~Scope() { atEnd_(); }

 private:
  const std::function<void()> atEnd_;
};

/// Sets the time zone; the end of the scope restores that of the machine.
struct TimeZone : Scope {
  explicit TimeZone(const char* zone)
      : Scope([] {
          ::unsetenv("TZ");
          ::tzset();
        }) {
    ::setenv("TZ", zone, 1);
    ::tzset();
  }
};

/// Lets a write beyond the file size fail as on a full disk.
struct FullDisk : Scope {
  explicit FullDisk(rlim_t size) : Scope([] { SetLimit(RLIM_INFINITY); }) { SetLimit(size); }

 private:
  static void SetLimit(rlim_t size) {
    ::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = std::min(size, limit.rlim_max);
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
};

/// Collectors write files with fixed names in /tmp. Tests of these collectors hold this lock, so
/// that test programs that run at the same time wait.
class FixedFilesLock {
 public:
  FixedFilesLock() { ::flock(file_.Get(), LOCK_EX); }

 private:
  const Platform::FileDescriptor file_{
      ::open((boost::filesystem::temp_directory_path() / "norvik-tests.lock").c_str(),
             O_CREAT | O_RDWR | O_CLOEXEC, 0666)};
};

}  // namespace Norvik::Tests

namespace tests {

/// Sets the C locale; the end of the scope sets "C".
struct ScopedLocale : Norvik::Tests::Scope {
  explicit ScopedLocale(const char* name) : Scope([] { std::setlocale(LC_ALL, "C"); }) {
    if (!std::setlocale(LC_ALL, name)) ADD_FAILURE() << "no locale " << name;
  }
};

/// Sets the process's C++ locale and that of standard output to one that writes 1.234,5.
struct CommaLocale : Norvik::Tests::Scope {
  CommaLocale() : Scope([] { Use(std::locale::classic()); }) {
    Use(std::locale(std::locale::classic(), new Punctuation));
  }

 private:
  struct Punctuation : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };
  static void Use(const std::locale& locale) {
    std::locale::global(locale);
    std::cout.imbue(locale);
  }
};

}  // namespace tests
