#include "module/ConfigurationText.h"

#include <locale>
#include <sstream>

namespace Norvik::KOB {

std::string ConfigurationText(const Common::KobConfigurationInfo& configuration) {
  std::ostringstream stream;
  stream.imbue(std::locale::classic());
  stream << configuration;
  return stream.str();
}

}  // namespace Norvik::KOB
