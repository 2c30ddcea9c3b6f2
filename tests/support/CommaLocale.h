#pragma once

#include <iostream>
#include <locale>

namespace tests {

/// While it lives, the process's C++ locale and that of standard output write 1.234,5.
class CommaLocale {
 public:
  CommaLocale()
      : global_(std::locale::global(std::locale(std::locale(), new Punctuation))),
        output_(std::cout.imbue(std::locale())) {}
  ~CommaLocale() {
    std::cout.imbue(output_);
    std::locale::global(global_);
  }
  CommaLocale(const CommaLocale&) = delete;
  CommaLocale& operator=(const CommaLocale&) = delete;

 private:
  struct Punctuation : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };
  std::locale global_;
  std::locale output_;
};

}  // namespace tests
