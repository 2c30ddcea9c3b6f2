#include "module/Actions/Mac/ShareText.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <sstream>

namespace Norvik::KOB {

std::string WithoutShare(const std::string& listing, const std::string& name) {
  constexpr char START[] = "name:";
  std::istringstream lines(listing);
  std::string rest;
  bool isMeant = false;
  for (std::string line; std::getline(lines, line);) {
    if (boost::starts_with(line, START)) {
      isMeant = boost::trim_copy(line.substr(sizeof(START) - 1)) == name;
    }
    if (!isMeant) rest += line + "\n";
  }
  return rest;
}

}  // namespace Norvik::KOB
