#include "module/Actions/Mac/ProcessText.h"

#include <algorithm>
#include <cstdio>

#include "common/text/Text.h"

namespace Norvik::KOB {

std::string ReadProcessorShare(const std::string& output) {
  const auto heading = output.find('\n');
  if (heading == std::string::npos || Common::EncodeUtf8Characters(output) != output) return "100";
  std::string share = output.substr(heading + 1, output.find('\n', heading + 1) - heading - 1);
  const auto isBlank = [](char c) { return std::string(" \t\v\f\r").find(c) != std::string::npos; };
  share.erase(std::remove_if(share.begin(), share.end(), isBlank), share.end());
  return share;
}

std::string PercentText(unsigned long long part, long long whole) {
  if (whole < 1) return "0";
  char text[64];
  const double percent = static_cast<double>(part) / static_cast<double>(whole) * 100;
  std::snprintf(text, sizeof(text), "%0.2f", percent);
  return text;
}

}  // namespace Norvik::KOB
