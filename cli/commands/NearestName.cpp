#include "cli/commands/NearestName.h"

#include <algorithm>
#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/join.hpp>
#include <cstddef>
#include <locale>

namespace Norvik::Cli {

namespace {

/// Number of letters to add, leave out, replace or swap with their neighbour.
std::size_t Distance(const std::string& first, const std::string& second) {
  std::vector<std::size_t> beforeLast;
  std::vector<std::size_t> last;
  std::vector<std::size_t> row(second.size() + 1);
  for (std::size_t j = 0; j < row.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= first.size(); ++i) {
    beforeLast = last;
    last = row;
    row[0] = i;
    for (std::size_t j = 1; j < row.size(); ++j) {
      const std::size_t replaced = last[j - 1] + (first[i - 1] == second[j - 1] ? 0 : 1);
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, replaced});
      const bool areSwapped =
          i > 1 && j > 1 && first[i - 1] == second[j - 2] && first[i - 2] == second[j - 1];
      if (areSwapped) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
    }
  }
  return row.back();
}

std::string InLowerCase(const std::string& text) {
  return boost::algorithm::to_lower_copy(text, std::locale::classic());
}

}  // namespace

std::string NearestName(const std::string& wrong, const std::vector<std::string>& names) {
  std::string nearest;
  std::size_t least = 0;
  for (const std::string& name : names) {
    const std::size_t distance = Distance(InLowerCase(wrong), InLowerCase(name));
    if (3 * distance > std::max(wrong.size(), name.size())) continue;
    if (!nearest.empty() && distance >= least) continue;
    nearest = name;
    least = distance;
  }
  return nearest;
}

std::string UnknownName(const std::string& kind, const std::string& wrong,
                        const std::vector<std::string>& names) {
  const std::string nearest = NearestName(wrong, names);
  return "unknown " + kind + " " + wrong + "; " +
         (nearest.empty() ? "known are " + boost::algorithm::join(names, ", ")
                          : "the nearest is " + nearest);
}

}  // namespace Norvik::Cli
