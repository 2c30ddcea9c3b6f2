#include "json/Numbers.h"

#include <iostream>
#include <locale>
#include <sstream>

namespace json {

std::string FloatingText(double number) {
  std::ostringstream stream;
  stream.imbue(std::locale(std::cout.getloc(), new JSON::DecimalSeparator<char, '.'>));
  stream << number;
  return stream.str();
}

// Not `from_chars`, which cannot read fractions on every system.
double FloatingOf(const std::string& text) {
  std::istringstream stream(text);
  stream.imbue(std::locale::classic());
  double number = 0;
  stream >> number;
  return stream && stream.peek() == std::istringstream::traits_type::eof() ? number : 0;
}

}  // namespace json
