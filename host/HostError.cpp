#include "host/HostError.h"

#include <boost/filesystem/exception.hpp>

#include "common/text/Text.h"

namespace Norvik::Host {

using Common::OnOneLine;

std::string ReasonOf(const std::exception& error) {
  const auto* const ofFile = dynamic_cast<const boost::filesystem::filesystem_error*>(&error);
  if (!ofFile) return OnOneLine(error.what());
  const std::string target = ofFile->path2().empty() ? "" : " to " + ofFile->path2().string();
  return OnOneLine(ofFile->path1().string() + target + ": " + ofFile->code().message());
}

std::string FailureOf(const std::exception& error) {
  return *error.what() ? ReasonOf(error) : "the action threw an exception";
}

}  // namespace Norvik::Host
